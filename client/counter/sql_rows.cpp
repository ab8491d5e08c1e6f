#include "counter/sql_rows.h"

#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"

#include <QSqlError>
#include <QSqlQuery>

#include <cassert>

namespace counter {

namespace {

const CRecordKind& kindOf(int typeId) {
  const CRecordKind* const kind = recordKind(typeId);
  assert(kind != nullptr);
  return *kind;
}

bool run(QSqlQuery& query, const QString& statement, const std::vector<QVariant>& values, std::string& error) {
  bool ok = query.prepare(statement);
  for (const QVariant& value : values) query.addBindValue(value);
  ok = ok && query.exec();
  if (!ok) error = sqlErrorText(query);
  return ok;
}

}  // namespace

CRowReader::CRowReader(const CSqlConnection& connection, int typeId, const QString& condition)
    : m_kind(kindOf(typeId)), m_table(m_kind), m_query(connection.makeQuery()) {
  m_isPrepared = m_query.prepare(m_table.selectStatement() + QLatin1Char(' ') + condition);
}

std::vector<rdservice::IDataPtr> CRowReader::read(const std::vector<QVariant>& values,
                                                  const rdservice::CAccountInfoPtr& account, std::string& error,
                                                  const std::function<bool(const rdservice::IData&)>& isEnough) {
  std::vector<rdservice::IDataPtr> records;
  int place = 0;
  for (const QVariant& value : values) m_query.bindValue(place++, value);
  if (!m_isPrepared || !m_query.exec()) {
    error = sqlErrorText(m_query);
    return records;
  }
  while (m_query.next()) {
    records.push_back(m_kind.make());
    m_table.read(m_query, *records.back(), account);
    if (isEnough && isEnough(*records.back())) break;
  }
  if (m_query.lastError().isValid()) error = sqlErrorText(m_query);
  m_query.finish();
  return records;
}

CRowWriter::CRowWriter(const CSqlConnection& connection, int typeId)
    : m_table(kindOf(typeId)),
      m_query(connection.makeQuery()),
      m_isPrepared(m_query.prepare(m_table.upsertStatement())) {}

bool CRowWriter::upsert(const rdservice::IData& record, std::string& error) {
  if (m_isPrepared) m_table.bind(m_query, record);
  if (m_isPrepared && m_query.exec()) return true;
  error = sqlErrorText(m_query);
  return false;
}

bool upsertRow(const CSqlConnection& connection, const rdservice::IData& record, std::string& error) {
  return CRowWriter(connection, record.getBaseId()).upsert(record, error);
}

std::vector<rdservice::IDataPtr> selectRows(const CSqlConnection& connection, int typeId, const QString& condition,
                                            const std::vector<QVariant>& values,
                                            const rdservice::CAccountInfoPtr& account, std::string& error,
                                            const std::function<bool(const rdservice::IData&)>& isEnough) {
  return CRowReader(connection, typeId, condition).read(values, account, error, isEnough);
}

QVariant selectValue(const CSqlConnection& connection, const QString& statement, const std::vector<QVariant>& values,
                     std::string& error) {
  auto query = connection.makeQuery();
  if (!run(query, statement, values, error) || !query.next()) return {};
  return query.value(0);
}

CCompactCondition ofCompact(const std::string& accountKey, const std::string& exchangeId, const std::string& code,
                            std::int32_t fieldB, const std::string& fieldA) {
  const auto text = [](const std::string& utf8) { return QString::fromStdString(utf8); };
  return {QStringLiteral("WHERE \"account\" = ? AND \"open_date\" = ? AND \"compact_no\" = ? AND \"exchange\" = ? AND "
                         "\"code\" = ?"),
          {text(accountKey), fieldB, text(fieldA), text(exchangeId), text(code)}};
}

}  // namespace counter
