#include "counter/CCompactWriter.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/compact_closing.h"
#include "counter/record_kinds.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLogCenter.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;

constexpr utils::CLogSite SITE{"CCompactWriter.cpp", "counter::CCompactWriter::write"};

double toCents(double yuan) { return std::round(yuan * 100) / 100; }

/// At most 0.5 % of the principal is repaid and at most 0.05 % of it accrues as interest, at least one cent of each.
void changeALittle(CStkUnClosedCompacts& compact, std::mt19937& random) {
  const double share = (random() % 50 + 1) / 10000.0;
  const double repaid = std::min(compact.unpaidAmount, std::max(0.01, toCents(compact.unpaidAmount * share)));
  compact.unpaidAmount = toCents(compact.unpaidAmount - repaid);
  compact.repaidAmount = toCents(compact.repaidAmount + repaid);
  compact.interestAmount = toCents(compact.interestAmount + std::max(0.01, compact.unpaidAmount * share / 10));
}

/// Why a record cannot be written, empty when it has been.
std::string writeOne(const CSqlConnection& connection, std::map<int, QSqlQuery>& statements, const IDataPtr& record) {
  const auto* const kind = recordKind(record->getBaseId());
  if (kind == nullptr) return "the counter keeps no records of type " + std::to_string(record->getBaseId());
  const CSqlTable table(*kind);
  const auto [statement, isNew] = statements.try_emplace(record->getBaseId(), connection.makeQuery());
  auto& query = statement->second;
  if (isNew && !query.prepare(table.upsertStatement())) return sqlErrorText(query);
  table.bind(query, *record);
  return query.exec() ? std::string() : sqlErrorText(query);
}

}  // namespace

CCompactWriter::CCompactWriter(CBrokerAccounts& accounts) : m_accounts(accounts) {}

std::vector<IDataPtr> CCompactWriter::write(const CSqlConnection& connection, const std::vector<IDataPtr>& records) {
  m_rowIds.clear();
  std::string error = connection.error();
  std::vector<IDataPtr> written;
  if (error.empty()) {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    std::map<int, QSqlQuery> statements;  // by record type
    for (auto record = records.begin(); error.empty() && record != records.end(); ++record) {
      auto copy = (*record)->copy();
      const auto* const kind = recordKind(copy->getBaseId());
      if (const auto* const field = kind == nullptr ? nullptr : kind->accountField(); field != nullptr) {
        auto& account = field->edit<CAccountInfoPtr>(*copy);
        const std::string key = account == nullptr ? std::string() : account->getKey();
        account = m_accounts.find(connection, key, error);
        if (account == nullptr && error.empty()) error = "the counter has no account " + key;
      }
      if (error.empty()) error = writeOne(connection, statements, copy);
      written.push_back(std::move(copy));
    }
    statements.clear();  // an open statement would keep the transaction from ending
    if (error.empty()) transaction.commit(error);
  }
  if (error.empty()) return written;
  utils::logError(SITE, "change refused: {0}", error);
  return {};
}

std::vector<IDataPtr> CCompactWriter::close(const CSqlConnection& connection, const std::string& accountKey,
                                            const std::string& compactKey, std::int32_t closeDate) {
  return closeChosen(connection, accountKey, closeDate, [&](std::string&) { return std::vector{compactKey}; });
}

std::vector<IDataPtr> CCompactWriter::closeFirst(const CSqlConnection& connection, const std::string& accountKey,
                                                 int count, std::int32_t closeDate) {
  return closeChosen(connection, accountKey, closeDate,
                     [&](std::string& error) { return firstCompacts(connection, accountKey, count, error); });
}

std::vector<IDataPtr> CCompactWriter::closeChosen(const CSqlConnection& connection, const std::string& accountKey,
                                                  std::int32_t closeDate, const CChoice& choose) {
  if (!connection.isOpen()) return {};  // said when it was opened
  // The number of a removed row may be given to another.
  m_rowIds.clear();
  std::string error;
  const auto account = m_accounts.find(connection, accountKey, error);
  if (account == nullptr && error.empty()) error = "the counter has no account " + accountKey;
  std::vector<IDataPtr> moved;
  if (error.empty()) {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    const auto keys = error.empty() ? choose(error) : std::vector<std::string>();
    for (auto key = keys.begin(); error.empty() && key != keys.end(); ++key) {
      const auto both = moveToClosed(connection, account, *key, closeDate, error);
      moved.insert(moved.end(), both.begin(), both.end());
      if (!error.empty()) error = *key + ": " + error;
    }
    if (error.empty()) transaction.commit(error);
  }
  if (error.empty()) return moved;
  utils::logError(SITE, "no compact of account {0} closed: {1}", accountKey, error);
  return {};
}

std::vector<IDataPtr> CCompactWriter::changeRandom(const CSqlConnection& connection, const std::string& accountKey,
                                                   int count, unsigned seed) {
  if (!connection.isOpen()) return {};  // said when it was opened
  std::string error;
  const auto account = m_accounts.find(connection, accountKey, error);
  if (account == nullptr) {
    utils::logError(SITE, "no random changes for account {0}: {1}", accountKey, error.empty() ? "unknown" : error);
    return {};
  }
  auto rows = rowIds(connection, accountKey);
  const auto wanted = std::min(static_cast<std::size_t>(std::max(count, 0)), rows.size());
  std::mt19937 random(seed);
  std::vector<IDataPtr> records;
  {
    const auto& kind = *recordKind(rdservice::RecordStkUnClosedCompacts);
    const CSqlTable table(kind);
    auto query = connection.makeQuery();
    query.prepare(table.selectStatement() +
                  QStringLiteral(" WHERE rowid = ? AND %1 = ?").arg(CSqlTable::column(kind.accountField()->name)));
    for (std::size_t i = 0; i < wanted; ++i) {
      std::swap(rows[i], rows[i + random() % (rows.size() - i)]);
      query.bindValue(0, static_cast<qlonglong>(rows[i]));
      query.bindValue(1, QString::fromStdString(accountKey));
      if (!query.exec() || !query.next()) continue;
      auto record = kind.make();
      table.read(query, *record, account);
      changeALittle(static_cast<CStkUnClosedCompacts&>(*record), random);
      records.push_back(std::move(record));
    }
  }
  auto known = std::move(m_rowIds);  // an update leaves the row numbers as they are
  auto written = write(connection, records);
  m_rowIds = std::move(known);
  return written;
}

const std::vector<std::int64_t>& CCompactWriter::rowIds(const CSqlConnection& connection,
                                                        const std::string& accountKey) {
  auto& rows = m_rowIds[accountKey];
  if (!rows.empty()) return rows;
  const auto& kind = *recordKind(rdservice::RecordStkUnClosedCompacts);
  auto query = connection.makeQuery();
  query.prepare(QStringLiteral("SELECT rowid FROM %1 WHERE %2 = ? ORDER BY rowid")
                    .arg(CSqlTable::column(kind.des.name()), CSqlTable::column(kind.accountField()->name)));
  query.addBindValue(QString::fromStdString(accountKey));
  if (!query.exec()) utils::logError(SITE, "{0}", sqlErrorText(query));
  while (query.next()) rows.push_back(query.value(0).toLongLong());
  return rows;
}

}  // namespace counter
