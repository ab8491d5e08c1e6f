#include "counter/CRenewalDesk.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlConnection.h"
#include "counter/counter_errors.h"
#include "counter/ready_account.h"
#include "counter/sql_rows.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "rdservice/rdservice_enums.h"

#include <QDate>

#include <fmt/format.h>
#include <boost/make_shared.hpp>

#include <algorithm>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CCreditCompactRenewalApply;
using rdservice::CStkUnClosedCompacts;
using CAppointment = rdservice::StockSMTQueryAppointmentInfoResp;

// Texts for users.
constexpr const char* UNKNOWN_COMPACT = "柜台没有此合约";
constexpr const char* NO_DAYS = "展期天数须大于0";
constexpr const char* NO_EXPIRY = "合约没有到期日";
constexpr const char* TOO_MANY_DAYS = "展期天数 {} 超过上限 {}";
constexpr const char* TOO_LATE = "展期后的到期日超出范围";
constexpr const char* TOO_OFTEN = "合约已展期 {} 次，不可再次展期";
constexpr const char* OPENED_TODAY = "当日合约不可展期";
constexpr const char* EXPIRED = "合约已到期";
constexpr const char* TOO_EARLY = "距到期还有 {} 天，到期前 {} 天内方可展期";
constexpr const char* REFUSED = "柜台拒绝展期";  // when a record says why

constexpr std::int32_t LAST_DAY = 5373484;  ///< 9999-12-31

/// A book may tell that a compact was renewed, but not how often.
int timesOf(const CStkUnClosedCompacts& compact) {
  return std::max(compact.renewalTimes, compact.renewalFlag == '1' ? 1 : 0);
}

/// Days that the application adds to the expiry date; none without renewal days, whatever the new date.
std::int64_t daysOf(const CCreditCompactRenewalApply& application, const CStkUnClosedCompacts& compact) {
  const bool isGiven = application.flag == CCreditCompactRenewalApply::ExpiryGiven && application.renewalDays > 0;
  return isGiven ? std::int64_t(application.newExpiryDate) - compact.expiryDate : application.renewalDays;
}

/// The record of the type with the application's compact key; null when there is none.
template <class Record>
boost::shared_ptr<Record> find(const CSqlConnection& connection, int typeId, const CAccountInfoPtr& account,
                               const CCreditCompactRenewalApply& application, std::string& error) {
  const auto row = ofCompact(account->getKey(), application.exchangeId, application.code, application.openDate,
                             application.compactNumber);
  const auto rows = selectRows(connection, typeId, row.condition, row.values, account, error);
  return rows.empty() ? nullptr : boost::static_pointer_cast<Record>(rows.front());
}

CSqlAnswer refused(ERenewalRefusal kind, const std::string& reason) {
  if (kind == ERenewalRefusal::Error) return {{CounterRequestRefused, reason}, {}};
  if (kind == ERenewalRefusal::Reply) {
    bson::BSONObjBuilder builder;
    builder.append("msg", reason);
    return {{}, {}, builder.obj()};
  }
  auto record = boost::make_shared<rdservice::CErrorResp>();
  record->errorCode = CounterRequestRefused;
  record->errorText = reason;
  return {{CounterRequestRefused, REFUSED}, {record}};
}

/// Writes the renewed compact, or says why it is not renewed.
std::string renew(const CSqlConnection& connection, const CRenewalRules& rules, const CAccountInfoPtr& account,
                  const CCreditCompactRenewalApply& application, std::vector<rdservice::IDataPtr>& changed,
                  std::string& error) {
  const auto compact =
      find<CStkUnClosedCompacts>(connection, rdservice::RecordStkUnClosedCompacts, account, application, error);
  if (compact == nullptr) return UNKNOWN_COMPACT;
  const auto appointment =
      find<CAppointment>(connection, rdservice::RecordStockSMTQueryAppointmentInfoResp, account, application, error);
  const std::int64_t days = daysOf(application, *compact);
  const auto today = static_cast<std::int32_t>(QDate::currentDate().toJulianDay());
  auto refusal = renewalRefusal(rules, *compact, days, today);
  const int offered = appointment == nullptr ? 0 : appointment->maxRenewalDays;
  if (refusal.empty() && offered > 0 && days > offered) refusal = fmt::format(TOO_MANY_DAYS, days, offered);
  if (!refusal.empty() || !error.empty()) return refusal;

  compact->expiryDate += static_cast<std::int32_t>(days);
  compact->renewalTimes = timesOf(*compact) + 1;
  compact->renewalFlag = '1';
  if (upsertRow(connection, *compact, error)) changed.push_back(compact);
  if (appointment == nullptr || !error.empty()) return {};
  appointment->expiryDate = compact->expiryDate;
  appointment->renewedDays += static_cast<std::int32_t>(days);
  appointment->renewalTimes = compact->renewalTimes;
  upsertRow(connection, *appointment, error);
  return {};
}

}  // namespace

std::string renewalRefusal(const CRenewalRules& rules, const CStkUnClosedCompacts& compact, std::int64_t days,
                           std::int32_t today) {
  const std::int32_t left = compact.expiryDate - today;
  if (days <= 0) return NO_DAYS;
  if (compact.expiryDate == 0) return NO_EXPIRY;
  if (rules.maxDays > 0 && days > rules.maxDays) return fmt::format(TOO_MANY_DAYS, days, rules.maxDays);
  if (compact.expiryDate + days > LAST_DAY) return TOO_LATE;
  if (rules.maxTimes > 0 && timesOf(compact) >= rules.maxTimes) return fmt::format(TOO_OFTEN, timesOf(compact));
  if (!rules.isTodayAllowed && compact.fieldB == today) return OPENED_TODAY;
  if (rules.daysBeforeExpiry > 0 && left < 0) return EXPIRED;
  if (rules.daysBeforeExpiry > 0 && left > rules.daysBeforeExpiry)
    return fmt::format(TOO_EARLY, left, rules.daysBeforeExpiry);
  return {};
}

CWriteAnswer CRenewalDesk::apply(const CSqlConnection& connection, const CCreditCompactRenewalApply& application) {
  if (!connection.isOpen()) return {{unusableDatabase(connection), {}}};
  CWriteAnswer result;
  const std::string accountKey = application.accountInfo ? application.accountInfo->getKey() : std::string();
  const auto account = readyAccount(m_accounts, connection, accountKey, result.answer.error);
  if (account == nullptr) return result;
  const auto found = m_rules.find(account->counterType);
  const CRenewalRules rules = found == m_rules.end() ? CRenewalRules() : found->second;

  std::string error;
  std::string refusal;
  {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    if (error.empty()) refusal = renew(connection, rules, account, application, result.changed, error);
    if (error.empty()) transaction.commit(error);
  }
  if (!error.empty()) return {{sqlFailure(error), {}}};
  if (!refusal.empty()) result.answer = refused(rules.refusal, refusal);
  return result;
}

}  // namespace counter
