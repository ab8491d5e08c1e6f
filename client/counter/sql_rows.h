#pragma once

#include "counter/CSqlTable.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

// Single rows of the counter's tables, inside the caller's transaction. A failing statement leaves an `error`: its text
// and the database's complaint.

/// Inserts the record, or replaces that with its key.
bool upsertRow(const CSqlConnection& connection, const rdservice::IData& record, std::string& error);

/// The records of the type in the rows that `condition` ("WHERE ... ORDER BY ...", with a mark for each of `values`)
/// selects. Their account is `account`. Stops behind the first record for which `isEnough`, when given, says true.
std::vector<rdservice::IDataPtr> selectRows(const CSqlConnection& connection, int typeId, const QString& condition,
                                            const std::vector<QVariant>& values,
                                            const rdservice::CAccountInfoPtr& account, std::string& error,
                                            const std::function<bool(const rdservice::IData&)>& isEnough = nullptr);

/// The same for many rows: the statement is prepared once. One thread; gone before the transaction ends.
class CRowReader {
 public:
  CRowReader(const CSqlConnection& connection, int typeId, const QString& condition);

  std::vector<rdservice::IDataPtr> read(const std::vector<QVariant>& values, const rdservice::CAccountInfoPtr& account,
                                        std::string& error,
                                        const std::function<bool(const rdservice::IData&)>& isEnough = nullptr);

 private:
  const CRecordKind& m_kind;
  const CSqlTable m_table;
  QSqlQuery m_query;
  bool m_isPrepared;
};

class CRowWriter {
 public:
  CRowWriter(const CSqlConnection& connection, int typeId);

  bool upsert(const rdservice::IData& record, std::string& error);

 private:
  const CSqlTable m_table;
  QSqlQuery m_query;
  bool m_isPrepared;
};

/// The one value that a statement selects; null when it selects none.
QVariant selectValue(const CSqlConnection& connection, const QString& statement, const std::vector<QVariant>& values,
                     std::string& error);

/// Selects the row of one compact, in any table whose records have the key of a compact.
struct CCompactCondition {
  QString condition;
  std::vector<QVariant> values;
};
CCompactCondition ofCompact(const std::string& accountKey, const std::string& exchangeId, const std::string& code,
                            std::int32_t fieldB, const std::string& fieldA);

}  // namespace counter
