#include "counter/CBookContext.h"

#include "rdservice/CInstrumentInfo.h"
#include "rdservice/rdservice_enums.h"

#include <fmt/format.h>
#include <boost/pointer_cast.hpp>

#include <utility>

namespace counter {

namespace {

constexpr std::size_t MAX_ERRORS = 1000;

}  // namespace

CBookContext::CBookContext(QDate today, const std::atomic<bool>& giveUp) : m_giveUp(giveUp) {
  m_parsing.today = static_cast<std::int32_t>(today.toJulianDay());
}

void CBookContext::addError(const std::string& file, int line, int column, std::string message) {
  if (m_result.errors.size() < MAX_ERRORS)
    m_result.errors.push_back({file, line, column, std::move(message)});
  else
    ++m_result.moreErrors;
}

void CBookContext::addReferent(const rdservice::IDataPtr& record) {
  if (record->getBaseId() == rdservice::RecordAccountInfo) {
    auto account = boost::static_pointer_cast<rdservice::CAccountInfo>(record);
    m_accounts.try_emplace(account->accountId, account);
  } else if (record->getBaseId() == rdservice::RecordInstrumentInfo) {
    m_instruments.try_emplace(record->getKey(), static_cast<const rdservice::CInstrumentInfo&>(*record).name);
  }
}

rdservice::CAccountInfoPtr CBookContext::account(std::string_view accountId) const {
  const auto found = m_accounts.find(std::string(accountId));
  return found == m_accounts.end() ? nullptr : found->second;
}

const rdservice::CInternedText* CBookContext::instrumentName(const std::string& stockKey) const {
  const auto found = m_instruments.find(stockKey);
  return found == m_instruments.end() ? nullptr : &found->second;
}

std::string CBookContext::nextPosition(const std::string& kind, const rdservice::CAccountInfo& account) {
  return fmt::format("{:010}", ++m_positions[kind + "." + account.accountId]);
}

}  // namespace counter
