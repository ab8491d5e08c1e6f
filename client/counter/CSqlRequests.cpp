#include "counter/CSqlRequests.h"

#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/counter_errors.h"
#include "counter/record_kinds.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CQueryDataReq.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/service_requests.h"
#include "utils/CLogCenter.h"

#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <utility>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::IData;
using utils::RDError;

constexpr utils::CLogSite SITE{"CSqlRequests.cpp", "counter::CSqlRequests::answer"};

// Texts for users.
constexpr const char* UNKNOWN_ACCOUNT = "柜台没有此资金账号: ";
constexpr const char* NOT_LOGGED_IN = "资金账号未登录: ";
constexpr const char* UNKNOWN_REQUEST = "柜台不支持此请求: ";
constexpr const char* UNKNOWN_DATA = "柜台没有此类数据: ";
constexpr const char* DATABASE_UNUSABLE = "柜台数据库不可用: ";
constexpr const char* SQL_FAILED = "柜台数据库错误: ";

/// Rows between two looks at whether the work is still wanted.
constexpr std::size_t ROWS_PER_LOOK = 4096;

CSqlAnswer failed(int code, const std::string& text) { return {RDError(code, text), {}}; }

CSqlAnswer sqlFailed(const std::string& error) {
  utils::logError(SITE, "{0}", error);
  return failed(CounterSqlFailed, SQL_FAILED + error);
}

/// The smaller of two limits of which 0 means none.
int tighter(int a, int b) { return a <= 0 || b <= 0 ? std::max({a, b, 0}) : std::min(a, b); }

}  // namespace

CSqlRequests::CSqlRequests(CBrokerAccounts& accounts, CCompactBatches batches, std::function<bool()> giveUp)
    : m_accounts(accounts), m_batches(std::move(batches)), m_giveUp(std::move(giveUp)) {}

CSqlAnswer CSqlRequests::answer(const CSqlConnection& connection, const IData& request) {
  if (!connection.isOpen())
    return failed(CounterDatabaseUnusable, DATABASE_UNUSABLE + connection.path() + ": " + connection.error());
  switch (request.getBaseId()) {
    case rdservice::RequestQueryAccounts: return queryAccounts(connection);
    case rdservice::RequestQueryInstruments: return queryInstruments(connection);
    case rdservice::RequestLogin: return login(connection, static_cast<const rdservice::CLoginReq&>(request));
    case rdservice::RequestQueryCompactV2:
      return queryCompacts(connection, static_cast<const rdservice::CQueryCompactReqV2&>(request));
    case rdservice::RequestQueryData:
      return queryData(connection, static_cast<const rdservice::CQueryDataReq&>(request));
    default: return failed(RDError::Unsupported, UNKNOWN_REQUEST + std::to_string(request.getBaseId()));
  }
}

CSqlAnswer CSqlRequests::queryAccounts(const CSqlConnection& connection) {
  std::vector<CAccountInfoPtr> accounts;
  std::string error;
  if (!m_accounts.reload(connection, accounts, error)) return sqlFailed(error);
  return {RDError(), {accounts.begin(), accounts.end()}};
}

CSqlAnswer CSqlRequests::queryInstruments(const CSqlConnection& connection) {
  return select(connection, *recordKind(rdservice::RecordInstrumentInfo), QStringLiteral("ORDER BY rowid"), {},
                nullptr);
}

CSqlAnswer CSqlRequests::login(const CSqlConnection& connection, const rdservice::CLoginReq& request) {
  std::string error;
  const auto account = m_accounts.find(connection, request.accountKey, error);
  if (!error.empty()) return sqlFailed(error);
  if (account == nullptr) return failed(CounterUnknownAccount, UNKNOWN_ACCOUNT + request.accountKey);
  m_accounts.setLoggedIn(request.accountKey, request.login != 0);
  return {};
}

CSqlAnswer CSqlRequests::queryCompacts(const CSqlConnection& connection, const rdservice::CQueryCompactReqV2& request) {
  CSqlAnswer refused;
  const auto account = readyAccount(connection, request.accountKey, refused.error);
  if (account == nullptr) return refused;
  const auto* const kind = recordKind(request.dataType);
  if (kind == nullptr || kind->position == nullptr)
    return failed(RDError::Unsupported, UNKNOWN_DATA + std::to_string(request.dataType));

  const QString position = CSqlTable::column(kind->position);
  QString condition = QStringLiteral("WHERE %1 = ?").arg(CSqlTable::column(kind->accountField()->name));
  std::vector<QVariant> values{QString::fromStdString(request.accountKey)};
  if (request.compactType != rdservice::CompactTypeAll) {
    condition += QStringLiteral(" AND %1 = ?").arg(CSqlTable::column("compact_type"));
    values.emplace_back(QString(QChar(request.compactType)));
  }
  const bool isContinued = !request.positionString.empty();
  if (isContinued) values.emplace_back(QString::fromStdString(request.positionString));
  CSqlAnswer repeated;
  if (isContinued && m_batches.repeatingTypes.count(account->counterType) != 0)
    repeated = select(connection, *kind, condition + QStringLiteral(" AND %1 = ?").arg(position), values, account);
  if (!repeated.error.isSuccess()) return repeated;

  if (isContinued) condition += QStringLiteral(" AND %1 > ?").arg(position);
  condition += QStringLiteral(" ORDER BY %1").arg(position);
  const auto limit = m_batches.maxCompacts.find(account->counterType);
  const int most = tighter(request.requestCount, limit == m_batches.maxCompacts.end() ? 0 : limit->second);
  if (most > 0) {
    condition += QStringLiteral(" LIMIT ?");
    values.emplace_back(most);
  }
  auto answer = select(connection, *kind, condition, values, account);
  if (answer.error.isSuccess())
    answer.records.insert(answer.records.begin(), repeated.records.begin(), repeated.records.end());
  return answer;
}

CSqlAnswer CSqlRequests::queryData(const CSqlConnection& connection, const rdservice::CQueryDataReq& request) {
  CSqlAnswer refused;
  const std::string key = request.accountInfo == nullptr ? std::string() : request.accountInfo->getKey();
  const auto account = readyAccount(connection, key, refused.error);
  if (account == nullptr) return refused;
  const auto* const kind = recordKind(request.dataType);
  if (kind == nullptr || kind->accountField() == nullptr)
    return failed(RDError::Unsupported, UNKNOWN_DATA + std::to_string(request.dataType));
  const QString order = kind->position == nullptr ? QStringLiteral("rowid") : CSqlTable::column(kind->position);
  return select(connection, *kind,
                QStringLiteral("WHERE %1 = ? ORDER BY %2").arg(CSqlTable::column(kind->accountField()->name), order),
                {QString::fromStdString(key)}, account);
}

CAccountInfoPtr CSqlRequests::readyAccount(const CSqlConnection& connection, const std::string& accountKey,
                                           RDError& error) {
  std::string sqlError;
  auto account = m_accounts.find(connection, accountKey, sqlError);
  if (!sqlError.empty()) {
    error = sqlFailed(sqlError).error;
  } else if (account == nullptr) {
    error = RDError(CounterUnknownAccount, UNKNOWN_ACCOUNT + accountKey);
  } else if (!m_accounts.isLoggedIn(accountKey)) {
    error = RDError(CounterNotLoggedIn, NOT_LOGGED_IN + accountDisplayID(*account));
  }
  return error.isSuccess() ? account : nullptr;
}

CSqlAnswer CSqlRequests::select(const CSqlConnection& connection, const CRecordKind& kind, const QString& condition,
                                const std::vector<QVariant>& values, const CAccountInfoPtr& account) const {
  const CSqlTable table(kind);
  auto query = connection.makeQuery();
  bool ok = query.prepare(table.selectStatement() + QLatin1Char(' ') + condition);
  for (const auto& value : values) query.addBindValue(value);
  ok = ok && query.exec();
  CSqlAnswer answer;
  while (ok && query.next()) {
    if (answer.records.size() % ROWS_PER_LOOK == 0 && m_giveUp()) return {RDError(RDError::Stopped, "柜台已停止"), {}};
    auto record = kind.make();
    table.read(query, *record, account);
    answer.records.push_back(std::move(record));
  }
  if (!ok || query.lastError().isValid()) return sqlFailed(sqlErrorText(query));
  return answer;
}

}  // namespace counter
