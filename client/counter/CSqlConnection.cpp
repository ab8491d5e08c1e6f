#include "counter/CSqlConnection.h"

#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <utility>

namespace counter {

namespace {

/// Marks a file as a counter's database ("PCBk"), so that nobody's other database is taken for one.
constexpr int APPLICATION_ID = 0x5043426B;

constexpr const char* PRAGMAS[] = {
    "PRAGMA journal_mode = WAL",
    "PRAGMA synchronous = NORMAL",  // with write-ahead logging a power cut may lose the last commits, never the file
    "PRAGMA cache_size = -65536",   // KiB
    "PRAGMA temp_store = MEMORY",
};

QString nextConnectionName() {
  static std::atomic<unsigned> s_number{0};
  return QStringLiteral("counter-%1").arg(++s_number);
}

/// Changes whenever a table's columns or keys do (FNV-1a over the statements that make the tables).
int schemaVersion() {
  std::uint32_t hash = 2166136261U;
  for (const auto& kind : recordKinds())
    for (const char byte : CSqlTable(kind).createStatement().toUtf8())
      hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
  return static_cast<int>(hash & 0x7FFFFFFFU);
}

}  // namespace

CSqlConnection::CSqlConnection(std::string path, EOldTables oldTables)
    : m_name(nextConnectionName()), m_path(std::move(path)), m_error(open(oldTables)) {}

CSqlConnection::~CSqlConnection() { QSqlDatabase::removeDatabase(m_name); }

std::string CSqlConnection::open(EOldTables oldTables) {
  auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
  database.setDatabaseName(QString::fromStdString(m_path));
  database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
  const QFileInfo file(QString::fromStdString(m_path));
  if (file.exists() && !file.isWritable()) return "数据库文件只读";
  std::string error;
  if (!database.open())
    error = database.lastError().text().toStdString();
  else if (checkOwner(error) && prepare(error) && oldTables == EOldTables::Refuse)
    checkTables(error);
  return error;
}

bool CSqlConnection::checkOwner(std::string& error) const {
  int application = 0;
  int tables = 0;
  if (!readNumber("PRAGMA application_id", application, error) ||
      !readNumber("SELECT count(*) FROM sqlite_master", tables, error))
    return false;
  if (application != APPLICATION_ID && (application != 0 || tables != 0)) error = "不是本程序的柜台数据库";
  return error.empty();
}

bool CSqlConnection::prepare(std::string& error) const {
  return std::all_of(std::begin(PRAGMAS), std::end(PRAGMAS),
                     [&](const char* pragma) { return run(QLatin1String(pragma), error); });
}

bool CSqlConnection::checkTables(std::string& error) const {
  int version = 0;
  if (!readNumber("PRAGMA user_version", version, error)) return false;
  if (version == schemaVersion()) return true;
  CSqlTransaction transaction(*this);
  error = transaction.error();
  if (!error.empty() || !readNumber("PRAGMA user_version", version, error)) return false;
  if (version == schemaVersion()) return true;  // another connection was faster
  if (version != 0) {
    error = "数据库由其他版本的程序建立，请重新载入账本";
    return false;
  }
  return recreateTables(error) && transaction.commit(error);
}

bool CSqlConnection::readNumber(const char* statement, int& number, std::string& error) const {
  auto query = makeQuery();
  if (query.exec(QLatin1String(statement)) && query.next()) {
    number = query.value(0).toInt();
    return true;
  }
  error = sqlErrorText(query);
  return false;
}

bool CSqlConnection::recreateTables(std::string& error) const {
  for (const auto& kind : recordKinds())
    if (!run(CSqlTable(kind).dropStatement(), error) || !run(CSqlTable(kind).createStatement(), error)) return false;
  return run(QStringLiteral("PRAGMA application_id = %1").arg(APPLICATION_ID), error) &&
         run(QStringLiteral("PRAGMA user_version = %1").arg(schemaVersion()), error);
}

QSqlQuery CSqlConnection::makeQuery() const {
  QSqlQuery query(QSqlDatabase::database(m_name, false));
  query.setForwardOnly(true);
  return query;
}

bool CSqlConnection::run(const QString& statement, std::string& error) const {
  auto query = makeQuery();
  if (query.exec(statement)) return true;
  error = sqlErrorText(query);
  return false;
}

std::string sqlErrorText(const QSqlQuery& query) {
  return query.lastQuery().toStdString() + ": " + query.lastError().text().toStdString();
}

CSqlTransaction::CSqlTransaction(const CSqlConnection& connection) : m_connection(connection) {
  m_open = connection.run(QStringLiteral("BEGIN IMMEDIATE"), m_error);
}

CSqlTransaction::~CSqlTransaction() {
  std::string ignored;
  if (m_open) m_connection.run(QStringLiteral("ROLLBACK"), ignored);
}

bool CSqlTransaction::commit(std::string& error) {
  if (!m_connection.run(QStringLiteral("COMMIT"), error)) return false;
  m_open = false;
  return true;
}

}  // namespace counter
