#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <QString>

class QSqlQuery;

namespace counter {

struct CRecordKind;

/// The SQL side of one kind of record, made from its field table: a column for each field, of the field's name.
/// Accounts are stored by their key, codes as one character, dates as Julian day numbers. Immutable; any thread.
class CSqlTable {
 public:
  explicit CSqlTable(const CRecordKind& kind);

  QString createStatement() const;
  QString dropStatement() const;
  /// Takes the values that `bind` gives.
  QString insertStatement() const;
  /// Inserts, or replaces the values of the record with the same key.
  QString upsertStatement() const;
  /// Every column, in the order that `read` expects; conditions are appended by the caller.
  QString selectStatement() const;

  /// Name of a field as a quoted column.
  static QString column(const char* field);
  /// A field's column as `read` expects it: texts as their UTF-8 bytes and codes as numbers, so that nothing is
  /// converted twice on the way into a record; no account, since the caller knows it.
  static QString selected(const rdservice::CFieldDes& field);

  void bind(QSqlQuery& query, const rdservice::IData& record) const;
  /// Fills `record` from the query's present row; its account becomes `account`.
  void read(const QSqlQuery& query, rdservice::IData& record, const rdservice::CAccountInfoPtr& account) const;

 private:
  QString columns() const;
  QString keyColumns() const;

  const CRecordKind& m_kind;
};

}  // namespace counter
