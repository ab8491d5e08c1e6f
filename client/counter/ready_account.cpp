#include "counter/ready_account.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlConnection.h"
#include "counter/counter_errors.h"
#include "utils/CLogCenter.h"

namespace counter {

namespace {

using utils::RDError;

constexpr utils::CLogSite SITE{"ready_account.cpp", "counter::sqlFailure"};

// Texts for users.
constexpr const char* UNKNOWN_ACCOUNT = "柜台没有此资金账号: ";
constexpr const char* NOT_LOGGED_IN = "资金账号未登录: ";
constexpr const char* DATABASE_UNUSABLE = "柜台数据库不可用: ";
constexpr const char* SQL_FAILED = "柜台数据库错误: ";

}  // namespace

rdservice::CAccountInfoPtr readyAccount(CBrokerAccounts& accounts, const CSqlConnection& connection,
                                        const std::string& accountKey, RDError& error) {
  std::string sqlError;
  auto account = accounts.find(connection, accountKey, sqlError);
  if (!sqlError.empty()) {
    error = sqlFailure(sqlError);
  } else if (account == nullptr) {
    error = unknownAccount(accountKey);
  } else if (!accounts.isLoggedIn(accountKey)) {
    error = RDError(CounterNotLoggedIn, NOT_LOGGED_IN + accountDisplayID(*account));
  }
  return error.isSuccess() ? account : nullptr;
}

RDError sqlFailure(const std::string& error) {
  utils::logError(SITE, "{0}", error);
  return {CounterSqlFailed, SQL_FAILED + error};
}

RDError unusableDatabase(const CSqlConnection& connection) {
  return {CounterDatabaseUnusable, DATABASE_UNUSABLE + connection.path() + ": " + connection.error()};
}

RDError unknownAccount(const std::string& accountKey) { return {CounterUnknownAccount, UNKNOWN_ACCOUNT + accountKey}; }

}  // namespace counter
