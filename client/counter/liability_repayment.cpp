#include "counter/liability_repayment.h"

#include "counter/compact_closing.h"
#include "counter/sql_rows.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/TypeManager.h"
#include "rdservice/rdservice_enums.h"

#include <fmt/format.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace counter {

namespace {

using rdservice::CStkOrder;
using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsPtr;
using rdservice::IData;
using rdservice::IDataPtr;

constexpr const char* INTEREST_PAID = "归还息费";

double toCents(double yuan) { return std::round(yuan * 100) / 100; }

QString oneCharacter(int code) { return QString(QChar(code)); }

/// Interest and whatever else is owed beside the principal, in the order in which it is paid.
constexpr double CStkUnClosedCompacts::*CHARGES[] = {
    &CStkUnClosedCompacts::interestAmount, &CStkUnClosedCompacts::penaltyAmount, &CStkUnClosedCompacts::feeAmount,
    &CStkUnClosedCompacts::equityCompensation};

double chargesOf(const CStkUnClosedCompacts& compact) {
  double sum = 0;
  for (const auto charge : CHARGES) sum += compact.*charge;
  return toCents(sum);
}

bool owesNothing(const CStkUnClosedCompacts& compact) {
  return compact.financingVolume == 0 && compact.lendingVolume == 0 && toCents(compact.unpaidAmount) == 0 &&
         chargesOf(compact) == 0;
}

/// Changes compacts of one order one after the other.
class CRepayment {
 public:
  CRepayment(const CSqlConnection& connection, const CStkOrder& order, std::int32_t date,
             std::vector<IDataPtr>& changed, std::string& error)
      : m_connection(connection), m_order(order), m_date(date), m_changed(changed), m_error(error) {}

  /// Writes a compact that was `before` as it is `now`, and its change details.
  void write(const CStkUnClosedCompacts& before, const CStkUnClosedCompactsPtr& now) {
    const auto volume = now->financingVolume + now->lendingVolume - before.financingVolume - before.lendingVolume;
    const double principal = toCents(now->unpaidAmount - before.unpaidAmount);
    const double charges = toCents(chargesOf(*now) - chargesOf(before));
    if (volume != 0 || principal != 0)
      addDetail(*now, rdservice::operationValueToString(m_order.operationType), volume, principal);
    if (charges != 0) addDetail(*now, INTEREST_PAID, 0, charges);
    if (!m_error.empty()) return;
    if (owesNothing(*now)) {
      const auto both = moveToClosed(m_connection, m_order.accountInfo, before.getKey(), m_date, m_error);
      m_changed.insert(m_changed.end(), both.begin(), both.end());
    } else if (upsertRow(m_connection, *now, m_error)) {
      m_changed.push_back(now);
    }
  }

 private:
  void addDetail(const CStkUnClosedCompacts& compact, const std::string& kind, std::int64_t volume, double amount) {
    if (!m_error.empty()) return;
    rdservice::CStkCompactChange change;
    change.accountInfo = m_order.accountInfo;
    change.exchangeId = compact.exchangeId;
    change.code = compact.code;
    change.compactType = compact.compactType;
    change.compactNo = compact.fieldA;
    change.openDate = compact.fieldB;
    change.changeDate = m_date;
    change.changeKind = kind;
    change.changeVolume = volume;
    change.changeAmount = amount;
    change.remainingVolume = compact.financingVolume + compact.lendingVolume;
    change.remainingAmount = compact.unpaidAmount;
    change.serialNo = nextSerial();
    if (m_error.empty()) upsertRow(m_connection, change, m_error);
  }

  /// The counter's own serials are a "T" and digits, so that they differ from those of a book.
  std::string nextSerial() {
    if (m_lastSerial == 0) {
      const auto last =
          selectValue(m_connection,
                      QStringLiteral("SELECT max(\"serial_no\") FROM \"change_details\" WHERE \"account\" = ? "
                                     "AND \"change_date\" = ? AND \"serial_no\" GLOB 'T[0-9]*'"),
                      {QString::fromStdString(m_order.accountInfo->getKey()), m_date}, m_error);
      m_lastSerial = last.toString().mid(1).toLongLong();
    }
    return fmt::format("T{:010}", ++m_lastSerial);
  }

  const CSqlConnection& m_connection;
  const CStkOrder& m_order;
  const std::int32_t m_date;
  std::vector<IDataPtr>& m_changed;
  std::string& m_error;
  qlonglong m_lastSerial = 0;
};

/// A repayment of principal leaves as many financed shares as the rest of it pays.
void lowerPrincipal(CStkUnClosedCompacts& compact, double paid) {
  const double before = compact.unpaidAmount;
  compact.unpaidAmount = toCents(before - paid);
  compact.repaidAmount = toCents(compact.repaidAmount + paid);
  compact.financingVolume =
      before > 0 ? static_cast<std::int64_t>(
                       std::floor(static_cast<double>(compact.financingVolume) * compact.unpaidAmount / before))
                 : 0;
}

// Owing compacts of an account, type and source; conditions and orders are appended.
const QString OWING = QStringLiteral("WHERE \"account\" = ? AND \"compact_type\" = ? AND \"source\" = ? ");
const QString OF_SECURITY = QStringLiteral("AND \"exchange\" = ? AND \"code\" = ? AND \"lending_volume\" > 0 ");
const QString OWED_MONEY = QStringLiteral(
    "(\"unpaid_amount\" + \"interest_amount\" + \"penalty_amount\" + \"fee_amount\" + \"equity_compensation\")");

std::vector<QVariant> sharesValues(const CStkOrder& order, char source) {
  return {QString::fromStdString(order.accountInfo->getKey()), oneCharacter(rdservice::CompactTypeSecuritiesLending),
          oneCharacter(source), QString::fromStdString(order.exchangeId), QString::fromStdString(order.code)};
}

std::vector<QVariant> moneyValues(const CStkOrder& order, char source) {
  return {QString::fromStdString(order.accountInfo->getKey()), oneCharacter(rdservice::CompactTypeFinancing),
          oneCharacter(source)};
}

CStkUnClosedCompactsPtr copyOf(const IDataPtr& record) {
  return boost::static_pointer_cast<CStkUnClosedCompacts>(record->copy());
}

}  // namespace

std::int64_t owedShares(const CSqlConnection& connection, const CStkOrder& order, char source, std::string& error) {
  const auto statement = QStringLiteral("SELECT sum(\"lending_volume\") FROM \"unclosed_compacts\" ");
  return selectValue(connection, statement + OWING + OF_SECURITY, sharesValues(order, source), error).toLongLong();
}

double owedMoney(const CSqlConnection& connection, const CStkOrder& order, char source, std::string& error) {
  const auto statement = QStringLiteral("SELECT sum%1 FROM \"unclosed_compacts\" ").arg(OWED_MONEY);
  return toCents(selectValue(connection, statement + OWING, moneyValues(order, source), error).toDouble());
}

void returnShares(const CSqlConnection& connection, const CStkOrder& order, char source, std::int32_t date,
                  std::vector<IDataPtr>& changed, std::string& error) {
  std::int64_t left = order.volume;
  const auto compacts =
      selectRows(connection, rdservice::RecordStkUnClosedCompacts,
                 OWING + OF_SECURITY + QStringLiteral("ORDER BY \"open_date\", \"position_string\""),
                 sharesValues(order, source), order.accountInfo, error, [&left](const IData& compact) {
                   left -= static_cast<const CStkUnClosedCompacts&>(compact).lendingVolume;
                   return left <= 0;
                 });
  left = order.volume;
  CRepayment repayment(connection, order, date, changed, error);
  for (const IDataPtr& record : compacts) {
    if (!error.empty() || left == 0) return;
    const auto& before = static_cast<const CStkUnClosedCompacts&>(*record);
    const auto now = copyOf(record);
    const std::int64_t returned = std::min(left, before.lendingVolume);
    const double share = static_cast<double>(returned) / static_cast<double>(before.lendingVolume);
    now->lendingVolume -= returned;
    lowerPrincipal(*now, now->lendingVolume == 0 ? before.unpaidAmount : toCents(before.unpaidAmount * share));
    repayment.write(before, now);
    left -= returned;
  }
}

void repayMoney(const CSqlConnection& connection, const CStkOrder& order, char source, double amount, std::int32_t date,
                std::vector<IDataPtr>& changed, std::string& error) {
  const auto owedBy = [](const CStkUnClosedCompacts& compact) {
    return toCents(compact.unpaidAmount + chargesOf(compact));
  };
  double left = amount;
  const auto compacts = selectRows(
      connection, rdservice::RecordStkUnClosedCompacts,
      OWING + QStringLiteral("AND %1 > 0 ORDER BY \"repay_priority\" = 0, \"repay_priority\", \"open_date\", "
                             "\"position_string\"")
                  .arg(OWED_MONEY),
      moneyValues(order, source), order.accountInfo, error, [&left, &owedBy](const IData& compact) {
        left = toCents(left - owedBy(static_cast<const CStkUnClosedCompacts&>(compact)));
        return left <= 0;
      });
  left = toCents(amount);
  CRepayment repayment(connection, order, date, changed, error);
  for (const IDataPtr& record : compacts) {
    if (!error.empty() || left <= 0) return;
    const auto& before = static_cast<const CStkUnClosedCompacts&>(*record);
    const auto now = copyOf(record);
    const double principal = std::min(left, before.unpaidAmount);
    lowerPrincipal(*now, principal);
    left = toCents(left - principal);
    for (const auto charge : CHARGES) {
      const double paid = std::min(left, before.*charge);
      (*now).*charge = toCents(before.*charge - paid);
      left = toCents(left - paid);
    }
    repayment.write(before, now);
  }
}

}  // namespace counter
