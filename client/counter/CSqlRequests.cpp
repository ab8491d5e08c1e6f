#include "counter/CSqlRequests.h"

#include "counter/CQuoteFeed.h"
#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/counter_errors.h"
#include "counter/ready_account.h"
#include "counter/record_kinds.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CQueryDataReq.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/service_requests.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::IData;
using utils::RDError;

// Texts for users.
constexpr const char* UNKNOWN_REQUEST = "柜台不支持此请求: ";
constexpr const char* UNKNOWN_DATA = "柜台没有此类数据: ";
constexpr const char* WRONG_DATE = "日期无效: ";

/// Rows between two looks at whether the work is still wanted.
constexpr std::size_t ROWS_PER_LOOK = 4096;

CSqlAnswer failed(int code, const std::string& text) { return {RDError(code, text), {}}; }

CSqlAnswer sqlFailed(const std::string& error) { return {sqlFailure(error), {}}; }

/// Selects the sums over the account's unclosed compacts, in the order of the statistic's fields.
QString statisticsStatement() {
  const CRecordKind& kind = statisticsKind();
  const CRecordKind& compacts = *recordKind(rdservice::RecordStkUnClosedCompacts);
  const auto isGroup = [&](const rdservice::CFieldDes& field) {
    return std::any_of(kind.key.begin(), kind.key.end(),
                       [&](const char* name) { return std::string_view(name) == field.name; });
  };
  QStringList columns;
  QStringList groups;
  for (const auto& field : kind.des) {
    const QString column = CSqlTable::column(field.name);
    columns << (isGroup(field) ? CSqlTable::selected(field) : QStringLiteral("sum(%1)").arg(column));
    if (isGroup(field)) groups << column;
  }
  return QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? GROUP BY %4 ORDER BY %4")
      .arg(columns.join(QStringLiteral(", ")), CSqlTable::column(compacts.des.name()),
           CSqlTable::column(compacts.accountField()->name), groups.join(QStringLiteral(", ")));
}

/// The smaller of two limits of which 0 means none.
int tighter(int a, int b) { return a <= 0 || b <= 0 ? std::max({a, b, 0}) : std::min(a, b); }

}  // namespace

CSqlRequests::CSqlRequests(CBrokerAccounts& accounts, CQuoteFeed& quotes, CCompactBatches batches,
                           std::function<bool()> giveUp)
    : m_accounts(accounts), m_quotes(quotes), m_batches(std::move(batches)), m_giveUp(std::move(giveUp)) {}

CSqlAnswer CSqlRequests::answer(const CSqlConnection& connection, const IData& request) {
  if (!connection.isOpen()) return {unusableDatabase(connection), {}};
  switch (request.getBaseId()) {
    case rdservice::RequestQueryAccounts: return queryAccounts(connection);
    case rdservice::RequestQueryInstruments: return queryInstruments(connection);
    case rdservice::RequestLogin: return login(connection, static_cast<const rdservice::CLoginReq&>(request));
    case rdservice::RequestQueryCompactV2:
      return queryCompacts(connection, static_cast<const rdservice::CQueryCompactReqV2&>(request));
    case rdservice::RequestQueryData:
      return queryData(connection, static_cast<const rdservice::CQueryDataReq&>(request));
    case rdservice::RequestQueryAppointmentInfo:
      return queryAppointments(connection, static_cast<const rdservice::CQueryAppointmentInfoReq&>(request));
    case rdservice::RequestSubscribeQuotes:
      return subscribeQuotes(connection, static_cast<const rdservice::CSubscribeQuotesReq&>(request));
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
  if (account == nullptr) return {unknownAccount(request.accountKey), {}};
  m_accounts.setLoggedIn(request.accountKey, request.login != 0);
  return {};
}

CSqlAnswer CSqlRequests::queryCompacts(const CSqlConnection& connection, const rdservice::CQueryCompactReqV2& request) {
  CSqlAnswer refused;
  const auto account = readyAccount(m_accounts, connection, request.accountKey, refused.error);
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
  const auto account = readyAccount(m_accounts, connection, key, refused.error);
  if (account == nullptr) return refused;
  if (request.dataType == rdservice::RecordStkUnClosedCompactsStatics)
    return read(connection, statisticsKind(), statisticsStatement(), {QString::fromStdString(key)}, account);
  const auto* const kind = recordKind(request.dataType);
  if (kind == nullptr || kind->accountField() == nullptr)
    return failed(RDError::Unsupported, UNKNOWN_DATA + std::to_string(request.dataType));
  const QString order = kind->position == nullptr ? QStringLiteral("rowid") : CSqlTable::column(kind->position);
  return select(connection, *kind,
                QStringLiteral("WHERE %1 = ? ORDER BY %2").arg(CSqlTable::column(kind->accountField()->name), order),
                {QString::fromStdString(key)}, account);
}

CSqlAnswer CSqlRequests::queryAppointments(const CSqlConnection& connection,
                                           const rdservice::CQueryAppointmentInfoReq& request) {
  CSqlAnswer refused;
  const std::string accountKey = request.accountInfo ? request.accountInfo->getKey() : std::string();
  const auto account = readyAccount(m_accounts, connection, accountKey, refused.error);
  if (account == nullptr) return refused;
  QString condition = QStringLiteral("WHERE \"account\" = ?");
  std::vector<QVariant> values{QString::fromStdString(accountKey)};
  for (const auto& [column, text] : {std::pair{"exchange", &request.exchangeId}, std::pair{"code", &request.code}}) {
    if (text->empty()) continue;
    condition += QStringLiteral(" AND %1 = ?").arg(CSqlTable::column(column));
    values.emplace_back(QString::fromStdString(*text));
  }
  for (const auto& [bound, date] : {std::pair{">=", request.startDate}, std::pair{"<=", request.endDate}}) {
    const QDate day(date / 10000, date / 100 % 100, date % 100);
    if (!day.isValid()) return failed(CounterRequestRefused, WRONG_DATE + std::to_string(date));
    condition += QStringLiteral(" AND \"open_date\" %1 ?").arg(QLatin1String(bound));
    values.emplace_back(day.toJulianDay());
  }
  auto found = select(connection, *recordKind(rdservice::RecordStockSMTQueryAppointmentInfoResp),
                      condition + QStringLiteral(" ORDER BY \"open_date\", rowid"), values, account);
  if (!found.error.isSuccess()) return found;
  for (const auto& record : found.records)
    static_cast<rdservice::StockSMTQueryAppointmentInfoResp&>(*record).accountId = account->accountId;
  auto answer = boost::make_shared<rdservice::CQueryAppointmentInfoResp>();
  answer->resultFlag = found.records.empty() ? 0 : 1;
  answer->records = std::move(found.records);
  return {RDError(), {answer}};
}

CSqlAnswer CSqlRequests::subscribeQuotes(const CSqlConnection& connection,
                                         const rdservice::CSubscribeQuotesReq& request) {
  // First, so that no change falls between what is read and what is pushed.
  m_quotes.subscribe(request.stockKeys);
  auto answer =
      select(connection, *recordKind(rdservice::RecordPriceData), QStringLiteral("ORDER BY rowid"), {}, nullptr);
  m_quotes.removeOthers(answer.records);
  return answer;
}

CSqlAnswer CSqlRequests::select(const CSqlConnection& connection, const CRecordKind& kind, const QString& condition,
                                const std::vector<QVariant>& values, const CAccountInfoPtr& account) const {
  return read(connection, kind, CSqlTable(kind).selectStatement() + QLatin1Char(' ') + condition, values, account);
}

CSqlAnswer CSqlRequests::read(const CSqlConnection& connection, const CRecordKind& kind, const QString& statement,
                              const std::vector<QVariant>& values, const CAccountInfoPtr& account) const {
  const CSqlTable table(kind);
  auto query = connection.makeQuery();
  bool ok = query.prepare(statement);
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
