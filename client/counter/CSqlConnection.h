#pragma once

#include <QSqlDatabase>
#include <QString>

#include <string>

class QSqlQuery;

namespace counter {

/// One connection to a counter's SQLite database. Made, used and destroyed on one thread; needs a QCoreApplication.
///
/// Opening creates the tables in a new or empty file, and leaves another program's database as it is. Write-ahead
/// logging lets readers go on while one writes.
class CSqlConnection {
 public:
  /// What becomes of tables made by another version of this program. `Accept` neither looks at the tables nor creates
  /// any: it is for a caller who makes them anew.
  enum class EOldTables { Refuse, Accept };

  /// `path` is UTF-8. An unusable database leaves an `error`, and nothing can be done with the connection.
  explicit CSqlConnection(std::string path, EOldTables oldTables = EOldTables::Refuse);
  ~CSqlConnection();
  CSqlConnection(const CSqlConnection&) = delete;
  CSqlConnection& operator=(const CSqlConnection&) = delete;

  bool isOpen() const { return m_error.empty(); }
  /// Why the database cannot be used (UTF-8, for users), empty when it can.
  const std::string& error() const { return m_error; }
  const std::string& path() const { return m_path; }

  /// A query that keeps only the row it stands on.
  QSqlQuery makeQuery() const;
  /// Runs one statement; false sets `error` to the SQL text and the database's complaint.
  bool run(const QString& statement, std::string& error) const;

  /// Drops the tables and makes them again, empty, inside the caller's transaction.
  bool recreateTables(std::string& error) const;

 private:
  std::string open(EOldTables oldTables);
  bool checkOwner(std::string& error) const;
  bool prepare(std::string& error) const;
  bool checkTables(std::string& error) const;
  bool readNumber(const char* statement, int& number, std::string& error) const;

  const QString m_name;
  const std::string m_path;
  std::string m_error;
};

/// The SQL text of a query that failed, and the database's complaint.
std::string sqlErrorText(const QSqlQuery& query);

/// A transaction that is rolled back unless `commit` was called. One thread, inside the connection's life.
class CSqlTransaction {
 public:
  /// Takes the database's write lock at once, so that nothing can change between a look and a write.
  explicit CSqlTransaction(const CSqlConnection& connection);
  ~CSqlTransaction();
  CSqlTransaction(const CSqlTransaction&) = delete;
  CSqlTransaction& operator=(const CSqlTransaction&) = delete;

  /// Empty when the transaction has begun.
  const std::string& error() const { return m_error; }
  bool commit(std::string& error);

 private:
  const CSqlConnection& m_connection;
  bool m_open = false;
  std::string m_error;
};

}  // namespace counter
