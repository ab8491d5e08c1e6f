#include "counter/CPriorityDesk.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlConnection.h"
#include "counter/counter_errors.h"
#include "counter/ready_account.h"
#include "counter/sql_rows.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/entry_list.h"
#include "rdservice/rdservice_enums.h"

#include <fmt/format.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsPtr;
using rdservice::IDataPtr;

// Texts for users.
constexpr const char* UNEQUAL_LISTS = "偿还优先级请求的条目数不一致: 合约编号 {}，开仓日期 {}，优先级 {}";
constexpr const char* REFUSED = "合约[{}]偿还优先级: {}";
constexpr const char* UNKNOWN_COMPACT = "柜台没有此合约";
constexpr const char* AMBIGUOUS_COMPACT = "同一编号有多个合约";
constexpr const char* REPEATED_COMPACT = "同一请求中重复设置";
constexpr const char* NO_PRIORITY = "须为0 - 999999之间的整数，不能为\"{}\"";
constexpr const char* USED_PRIORITY = "同一账号的其他合约已使用优先级 {}";

constexpr std::int32_t MAX_PRIORITY = 999999;

/// What the request wants for one compact.
struct CEntry {
  std::string compactNo;
  std::string openDate;  ///< as the request writes it
  CStkUnClosedCompactsPtr compact{};
  std::int32_t priority = 0;
  std::string refusal{};
};

/// Digits only; an empty text is 0.
std::optional<std::int32_t> parseNumber(std::string_view text) {
  std::int32_t number = 0;
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (!std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  if (!text.empty() && std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
    return std::nullopt;
  return number;
}

/// Finds the compact that an entry means, or refuses the entry.
void findCompact(CRowReader& compacts, const CAccountInfoPtr& account, CEntry& entry, std::string& error) {
  const auto openDate = entry.openDate.empty() ? std::nullopt : parseNumber(entry.openDate);
  std::vector<IDataPtr> rows;
  if (openDate)
    rows =
        compacts.read({QString::fromStdString(account->getKey()), *openDate, QString::fromStdString(entry.compactNo)},
                      account, error);
  if (rows.size() == 1)
    entry.compact = boost::static_pointer_cast<CStkUnClosedCompacts>(rows.front());
  else
    entry.refusal = rows.empty() ? UNKNOWN_COMPACT : AMBIGUOUS_COMPACT;
}

std::vector<CEntry> readEntries(const CSqlConnection& connection, const CAccountInfoPtr& account,
                                const std::vector<std::string_view>& compactNos,
                                const std::vector<std::string_view>& openDates,
                                const std::vector<std::string_view>& priorities, std::string& error) {
  std::vector<CEntry> entries;
  std::unordered_set<std::string> keys;
  CRowReader compacts(connection, rdservice::RecordStkUnClosedCompacts,
                      QStringLiteral("WHERE \"account\" = ? AND \"open_date\" = ? AND \"compact_no\" = ? LIMIT 2"));
  for (std::size_t i = 0; error.empty() && i < compactNos.size(); ++i) {
    CEntry entry{std::string(compactNos[i]), std::string(openDates[i])};
    findCompact(compacts, account, entry, error);
    const auto priority = parseNumber(priorities[i]);
    if (entry.refusal.empty() && (!priority || *priority > MAX_PRIORITY))
      entry.refusal = fmt::format(NO_PRIORITY, priorities[i]);
    if (entry.refusal.empty() && !keys.insert(entry.compact->getKey()).second) entry.refusal = REPEATED_COMPACT;
    entry.priority = priority.value_or(0);
    entries.push_back(std::move(entry));
  }
  return entries;
}

/// Sees to it that the entries which are not refused give no priority twice, going by what holds after all of them.
class CClashes {
 public:
  /// `prioritised`: every compact of the account that has a priority now.
  CClashes(std::vector<CEntry>& entries, const std::vector<IDataPtr>& prioritised) : m_entries(entries) {
    std::unordered_set<std::string> changing;
    for (const CEntry& entry : entries)
      if (entry.refusal.empty()) changing.insert(entry.compact->getKey());
    for (const IDataPtr& record : prioritised)
      if (changing.count(record->getKey()) == 0)
        m_kept.insert(static_cast<const CStkUnClosedCompacts&>(*record).repayPriority);
  }

  void refuse() {
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
      const CEntry& entry = m_entries[i];
      if (!entry.refusal.empty() || entry.priority == 0) continue;
      if (m_kept.count(entry.priority) != 0 || !m_taker.emplace(entry.priority, i).second) refuse(i);
    }
  }

 private:
  /// Its compact keeps its priority, so that whoever was to get that is refused as well, and so on.
  void refuse(std::size_t index) {
    for (;;) {
      CEntry& entry = m_entries[index];
      entry.refusal = fmt::format(USED_PRIORITY, entry.priority);
      const std::int32_t kept = entry.compact->repayPriority;
      if (kept == 0) return;
      m_kept.insert(kept);
      const auto taker = m_taker.find(kept);
      if (taker == m_taker.end()) return;
      index = taker->second;
      m_taker.erase(taker);
    }
  }

  std::vector<CEntry>& m_entries;
  std::unordered_set<std::int32_t> m_kept;                ///< priorities of compacts that stay as they are
  std::unordered_map<std::int32_t, std::size_t> m_taker;  ///< by priority: the entry that gives it
};

/// Answers the entry, after changing its compact unless it was refused.
void workOff(CRowWriter& compacts, const CEntry& entry, CWriteAnswer& result, std::string& error) {
  if (!entry.refusal.empty()) {
    auto refused = boost::make_shared<rdservice::CErrorResp>();
    refused->errorCode = CounterRequestRefused;
    refused->errorText = fmt::format(REFUSED, entry.compactNo, entry.refusal);
    result.answer.records.push_back(std::move(refused));
    return;
  }
  if (entry.compact->repayPriority != entry.priority) {
    entry.compact->repayPriority = entry.priority;
    if (compacts.upsert(*entry.compact, error)) result.changed.push_back(entry.compact);
  }
  if (entry.priority == 0) return;
  auto response = boost::make_shared<rdservice::CCreditRepayPriorityResp>();
  response->fieldA = entry.compactNo;
  response->fieldB = entry.openDate;
  response->repayPriority = entry.priority;
  result.answer.records.push_back(std::move(response));
}

void workOffAll(const CSqlConnection& connection, const std::vector<CEntry>& entries, CWriteAnswer& result,
                std::string& error) {
  CRowWriter compacts(connection, rdservice::RecordStkUnClosedCompacts);
  for (auto entry = entries.begin(); error.empty() && entry != entries.end(); ++entry)
    workOff(compacts, *entry, result, error);
}

}  // namespace

CWriteAnswer CPriorityDesk::set(const CSqlConnection& connection,
                                const rdservice::CSetCreditRepayPriorityReq& request) {
  if (!connection.isOpen()) return {{unusableDatabase(connection), {}}};
  CWriteAnswer result;
  const std::string accountKey = request.accountInfo ? request.accountInfo->getKey() : std::string();
  const auto account = readyAccount(m_accounts, connection, accountKey, result.answer.error);
  if (account == nullptr) return result;
  const auto compactNos = rdservice::splitEntries(request.openDates);
  const auto openDates = rdservice::splitEntries(request.orderNumbers);
  const auto priorities = rdservice::splitEntries(request.priorities);
  if (compactNos.size() != openDates.size() || compactNos.size() != priorities.size())
    return {
        {{CounterRequestRefused, fmt::format(UNEQUAL_LISTS, compactNos.size(), openDates.size(), priorities.size())},
         {}}};

  std::string error;
  {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    std::vector<CEntry> entries;
    if (error.empty()) entries = readEntries(connection, account, compactNos, openDates, priorities, error);
    std::vector<IDataPtr> prioritised;
    if (error.empty())
      prioritised = selectRows(connection, rdservice::RecordStkUnClosedCompacts,
                               QStringLiteral("WHERE \"account\" = ? AND \"repay_priority\" <> 0"),
                               {QString::fromStdString(accountKey)}, account, error);
    CClashes(entries, prioritised).refuse();
    if (error.empty()) workOffAll(connection, entries, result, error);
    if (error.empty()) transaction.commit(error);
  }
  if (error.empty()) return result;
  return {{sqlFailure(error), {}}};
}

}  // namespace counter
