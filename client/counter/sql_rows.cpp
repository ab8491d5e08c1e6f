#include "counter/sql_rows.h"

#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"

#include <QSqlError>
#include <QSqlQuery>

#include <cassert>

namespace counter {

namespace {

bool run(QSqlQuery& query, const QString& statement, const std::vector<QVariant>& values, std::string& error) {
  bool ok = query.prepare(statement);
  for (const QVariant& value : values) query.addBindValue(value);
  ok = ok && query.exec();
  if (!ok) error = sqlErrorText(query);
  return ok;
}

}  // namespace

bool upsertRow(const CSqlConnection& connection, const rdservice::IData& record, std::string& error) {
  const CRecordKind* const kind = recordKind(record.getBaseId());
  assert(kind != nullptr);
  const CSqlTable table(*kind);
  auto query = connection.makeQuery();
  const bool isPrepared = query.prepare(table.upsertStatement());
  if (isPrepared) table.bind(query, record);
  if (isPrepared && query.exec()) return true;
  error = sqlErrorText(query);
  return false;
}

std::vector<rdservice::IDataPtr> selectRows(const CSqlConnection& connection, int typeId, const QString& condition,
                                            const std::vector<QVariant>& values,
                                            const rdservice::CAccountInfoPtr& account, std::string& error,
                                            const std::function<bool(const rdservice::IData&)>& isEnough) {
  const CRecordKind* const kind = recordKind(typeId);
  assert(kind != nullptr);
  const CSqlTable table(*kind);
  auto query = connection.makeQuery();
  std::vector<rdservice::IDataPtr> records;
  if (!run(query, table.selectStatement() + QLatin1Char(' ') + condition, values, error)) return records;
  while (query.next()) {
    records.push_back(kind->make());
    table.read(query, *records.back(), account);
    if (isEnough && isEnough(*records.back())) return records;
  }
  if (query.lastError().isValid()) error = sqlErrorText(query);
  return records;
}

QVariant selectValue(const CSqlConnection& connection, const QString& statement, const std::vector<QVariant>& values,
                     std::string& error) {
  auto query = connection.makeQuery();
  if (!run(query, statement, values, error) || !query.next()) return {};
  return query.value(0);
}

}  // namespace counter
