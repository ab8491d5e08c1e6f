#pragma once

#include "counter/CCsvReader.h"
#include "counter/CSqlTable.h"
#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <QSqlQuery>

#include <cstdint>
#include <string>
#include <vector>

namespace counter {

class CBookContext;
class CSqlConnection;
struct CRecordKind;

/// Loads one file of a book into its table, inside the caller's transaction. Faults go to the context. One thread.
class CBookFile {
 public:
  CBookFile(const CRecordKind& kind, CBookContext& context, const CSqlConnection& connection);

  /// False when it makes no sense to go on with the book: the database fails.
  bool load(const std::string& folder);

 private:
  bool readHeader(CCsvReader& reader);
  bool readRows(CCsvReader& reader);
  /// Null when something in the row is wrong.
  rdservice::IDataPtr readRecord(const std::vector<CCsvCell>& cells);
  bool readCell(const rdservice::CFieldDes& field, const CCsvCell& cell, rdservice::IData& record);
  bool checkInstrument(const std::vector<CCsvCell>& cells, rdservice::IData& record);
  void setPosition(rdservice::IData& record);
  bool insert(const rdservice::IData& record, const std::vector<CCsvCell>& cells);
  bool isRequired(const char* field) const;
  /// Where the field stands in the row, its first cell when it has no column.
  const CCsvCell& cellOf(const char* field, const std::vector<CCsvCell>& cells) const;
  void fail(const CCsvCell& cell, std::string message);
  void failFile(std::string message);

  const CRecordKind& m_kind;
  CBookContext& m_context;
  const CSqlTable m_table;
  const std::string m_name;
  std::vector<const rdservice::CFieldDes*> m_columns;  ///< the field of each column
  QSqlQuery m_insert;
  std::int64_t m_count = 0;
};

}  // namespace counter
