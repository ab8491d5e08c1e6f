#include "counter/COrderDesk.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlConnection.h"
#include "counter/liability_repayment.h"
#include "counter/ready_account.h"
#include "counter/sql_rows.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/TypeManager.h"
#include "rdservice/rdservice_enums.h"

#include <QDateTime>

#include <fmt/format.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace counter {

namespace {

using rdservice::CPositionStatics;
using rdservice::CPositionStaticsPtr;
using rdservice::CStkOrder;
using rdservice::CStkOrderPtr;

// Reasons for refusing, for users.
constexpr const char* UNKNOWN_SECURITY = "柜台没有此证券: {}{}";
constexpr const char* UNKNOWN_OPERATION = "柜台不支持此业务: {}";
constexpr const char* NO_VOLUME = "委托数量须大于0";
constexpr const char* WRONG_PRICE = "委托价格不能小于0";
constexpr const char* NO_PRICE = "证券没有行情，须给出委托价格";
constexpr const char* TOO_FEW_SHARES = "可用数量不足: 可用 {}，委托 {}";
constexpr const char* TOO_FEW_OWED = "超过未还融券数量: 未还 {}，委托 {}";
constexpr const char* NO_DEBT = "没有未还的融资负债";

/// What an operation takes and repays.
struct COrderRule {
  int operation;
  bool takesPosition;  ///< of the account, else the shares are bought
  bool returnsShares;  ///< else it repays money with what they bring
  char source;         ///< EKVCompactBrushSource of the compacts
};

constexpr COrderRule RULES[] = {
    {rdservice::OperationBuyToReturn, false, true, rdservice::BrushSourceNormal},
    {rdservice::OperationDirectReturn, true, true, rdservice::BrushSourceNormal},
    {rdservice::OperationSellToRepay, true, false, rdservice::BrushSourceNormal},
    {rdservice::OperationSpecialDirectReturn, true, true, rdservice::BrushSourceSpecial},
    {rdservice::OperationSpecialBuyToReturn, false, true, rdservice::BrushSourceSpecial},
};

const COrderRule* ruleOf(int operation) {
  const auto* const rule = std::find_if(std::begin(RULES), std::end(RULES),
                                        [operation](const COrderRule& r) { return r.operation == operation; });
  return rule == std::end(RULES) ? nullptr : rule;
}

QString text(const std::string& utf8) { return QString::fromStdString(utf8); }

/// One step of an order inside a transaction; after an error nothing more is done.
class CStep {
 public:
  CStep(const CSqlConnection& connection, CStkOrder& order, std::string& error)
      : m_connection(connection), m_order(order), m_error(error), m_rule(ruleOf(order.operationType)) {}

  /// Why the order cannot be done now, empty when it can. `available`: shares that it may take.
  std::string refusal(bool isKnown, std::int64_t available) {
    if (!isKnown) return fmt::format(UNKNOWN_SECURITY, m_order.exchangeId.str(), m_order.code.str());
    if (m_order.volume <= 0) return NO_VOLUME;
    if (!(m_order.price >= 0) || !std::isfinite(m_order.price)) return WRONG_PRICE;
    if (m_rule == nullptr)
      return fmt::format(UNKNOWN_OPERATION, rdservice::operationValueToString(m_order.operationType));
    if (m_rule->takesPosition && available < m_order.volume)
      return fmt::format(TOO_FEW_SHARES, available, m_order.volume);
    if (!m_rule->returnsShares) {
      if (price() <= 0) return NO_PRICE;
      return owedMoney(m_connection, m_order, m_rule->source, m_error) > 0 ? "" : NO_DEBT;
    }
    const std::int64_t owed = owedShares(m_connection, m_order, m_rule->source, m_error);
    return owed >= m_order.volume ? std::string() : fmt::format(TOO_FEW_OWED, owed, m_order.volume);
  }

  bool takesPosition() const { return m_rule != nullptr && m_rule->takesPosition; }

  /// Null when the account holds nothing of the security.
  CPositionStaticsPtr position() {
    const auto rows =
        selectRows(m_connection, rdservice::RecordPositionStatics,
                   QStringLiteral("WHERE \"account\" = ? AND \"exchange\" = ? AND \"code\" = ? AND "
                                  "\"direction\" = ? AND \"hedge_flag\" = ?"),
                   {text(m_order.accountInfo->getKey()), text(m_order.exchangeId), text(m_order.code),
                    QString(QChar(rdservice::EntrustDirectionBuy)), QString(QChar(rdservice::HedgeFlagSpeculation))},
                   m_order.accountInfo, m_error);
    return rows.empty() ? nullptr : boost::static_pointer_cast<CPositionStatics>(rows.front());
  }

  /// Yuan that the order brings or costs for a share; 0 when there is no quote.
  double price() {
    if (m_order.price > 0) return m_order.price;
    const auto rows =
        selectRows(m_connection, rdservice::RecordPriceData, QStringLiteral("WHERE \"exchange\" = ? AND \"code\" = ?"),
                   {text(m_order.exchangeId), text(m_order.code)}, nullptr, m_error);
    return rows.empty() ? 0 : static_cast<const rdservice::CPriceData&>(*rows.front()).lastPrice;
  }

  void repay(std::vector<rdservice::IDataPtr>& changed) {
    const auto today = static_cast<std::int32_t>(QDate::currentDate().toJulianDay());
    const bool isTraded = !m_rule->takesPosition || !m_rule->returnsShares;
    m_order.state = rdservice::OrderFilled;
    m_order.filledVolume = m_order.volume;
    m_order.filledAmount = isTraded ? std::round(static_cast<double>(m_order.volume) * price() * 100) / 100 : 0;
    if (m_rule->returnsShares)
      returnShares(m_connection, m_order, m_rule->source, today, changed, m_error);
    else
      repayMoney(m_connection, m_order, m_rule->source, m_order.filledAmount, today, changed, m_error);
  }

  void write(const rdservice::IDataPtr& record, std::vector<rdservice::IDataPtr>& changed) {
    if (m_error.empty() && upsertRow(m_connection, *record, m_error)) changed.push_back(record);
  }

 private:
  const CSqlConnection& m_connection;
  CStkOrder& m_order;
  std::string& m_error;
  const COrderRule* m_rule;
};

void refuse(CStkOrder& order, std::string reason) {
  order.state = rdservice::OrderRefused;
  order.reason = std::move(reason);
}

CStkOrderPtr makeOrder(const rdservice::CPlaceOrderReq& request, const rdservice::CAccountInfoPtr& account) {
  const QDateTime now = QDateTime::currentDateTime();
  auto order = boost::make_shared<CStkOrder>();
  order->accountInfo = account;
  order->exchangeId = request.exchangeId;
  order->code = request.code;
  order->operationType = request.operationType;
  order->volume = request.volume;
  order->price = request.price;
  order->orderDate = static_cast<std::int32_t>(now.date().toJulianDay());
  order->orderTime = now.toString(QStringLiteral("HH:mm:ss")).toStdString();
  order->batchNo = request.batchNo;
  order->remark = request.remark;
  return order;
}

std::string nextOrderId(const CSqlConnection& connection, const CStkOrder& order, std::string& error) {
  const auto last = selectValue(
      connection,
      QStringLiteral("SELECT max(\"order_id\") FROM \"orders\" WHERE \"account\" = ? AND \"order_date\" = ?"),
      {text(order.accountInfo->getKey()), order.orderDate}, error);
  return fmt::format("{:08}", last.toString().toLongLong() + 1);
}

/// The security's name; false when the counter has no such instrument.
bool readName(const CSqlConnection& connection, CStkOrder& order, std::string& error) {
  const auto rows =
      selectRows(connection, rdservice::RecordInstrumentInfo, QStringLiteral("WHERE \"exchange\" = ? AND \"code\" = ?"),
                 {text(order.exchangeId), text(order.code)}, nullptr, error);
  if (rows.empty()) return false;
  order.name = static_cast<const rdservice::CInstrumentInfo&>(*rows.front()).name;
  return true;
}

}  // namespace

bool COrderDesk::CPlaced::isEntrusted() const { return order != nullptr && order->state == rdservice::OrderEntrusted; }

COrderDesk::CPlaced COrderDesk::place(const CSqlConnection& connection, const rdservice::CPlaceOrderReq& request) {
  if (!connection.isOpen()) return {unusableDatabase(connection), nullptr};
  CPlaced placed;
  const auto account = readyAccount(m_accounts, connection, request.accountKey, placed.error);
  if (account == nullptr) return placed;

  std::string error;
  placed.order = makeOrder(request, account);
  {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    if (error.empty()) {
      placed.order->orderId = nextOrderId(connection, *placed.order, error);
      CStep step(connection, *placed.order, error);
      const bool isKnown = readName(connection, *placed.order, error);
      const auto position = step.position();
      auto reason = step.refusal(isKnown, position == nullptr ? 0 : position->availableVolume);
      if (!reason.empty()) {
        refuse(*placed.order, std::move(reason));
      } else if (step.takesPosition()) {
        position->availableVolume -= request.volume;
        step.write(position, placed.changed);
      }
      step.write(placed.order, placed.changed);
      if (error.empty()) transaction.commit(error);
    }
  }
  if (error.empty()) return placed;
  return {sqlFailure(error), nullptr};
}

std::vector<rdservice::IDataPtr> COrderDesk::fill(const CSqlConnection& connection, const CStkOrder& placed) {
  std::vector<rdservice::IDataPtr> changed;
  std::string error;
  {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    const auto rows =
        error.empty() ? selectRows(connection, rdservice::RecordStkOrder,
                                   QStringLiteral("WHERE \"account\" = ? AND \"order_date\" = ? AND \"order_id\" = ?"),
                                   {text(placed.accountInfo->getKey()), placed.orderDate, text(placed.orderId)},
                                   placed.accountInfo, error)
                      : std::vector<rdservice::IDataPtr>();
    const auto order = rows.empty() ? nullptr : boost::static_pointer_cast<CStkOrder>(rows.front());
    if (order != nullptr && order->state == rdservice::OrderEntrusted) {
      CStep step(connection, *order, error);
      const auto position = step.takesPosition() ? step.position() : nullptr;
      // What it holds back is its own.
      auto reason = step.refusal(true, position == nullptr ? 0 : position->currentVolume);
      if (reason.empty()) {
        step.repay(changed);
        if (position != nullptr) position->currentVolume -= order->volume;
      } else {
        refuse(*order, std::move(reason));
        if (position != nullptr)
          position->availableVolume = std::min(position->availableVolume + order->volume, position->currentVolume);
      }
      if (position != nullptr) step.write(position, changed);
      step.write(order, changed);
    }
    if (error.empty()) transaction.commit(error);
  }
  if (error.empty()) return changed;
  sqlFailure(error);
  return {};
}

std::vector<CStkOrderPtr> COrderDesk::entrusted(const CSqlConnection& connection) {
  std::vector<CStkOrderPtr> orders;
  if (!connection.isOpen()) return orders;  // said when it was opened
  std::vector<rdservice::CAccountInfoPtr> accounts;
  std::string error;
  m_accounts.reload(connection, accounts, error);
  for (auto account = accounts.begin(); error.empty() && account != accounts.end(); ++account)
    for (const auto& record :
         selectRows(connection, rdservice::RecordStkOrder,
                    QStringLiteral("WHERE \"account\" = ? AND \"state\" = ? ORDER BY rowid"),
                    {text((*account)->getKey()), QString(QChar(rdservice::OrderEntrusted))}, *account, error))
      orders.push_back(boost::static_pointer_cast<CStkOrder>(record));
  if (!error.empty()) sqlFailure(error);
  return orders;
}

}  // namespace counter
