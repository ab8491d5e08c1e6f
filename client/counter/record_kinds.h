#pragma once

#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <string>
#include <vector>

namespace counter {

/// Whether a book has a file of a kind.
enum class EBookFile { Needed, Optional, None };

/// A kind of record that a counter keeps: one table of its database and one file of a book, both named after the
/// record's field table.
struct CRecordKind {
  const rdservice::CStructDes& des;
  rdservice::IDataPtr (*make)();
  std::vector<const char*> key;       ///< fields that together identify a record
  std::vector<const char*> required;  ///< fields that a book must give; every other one has a default
  const char* position;               ///< field with the place in a query's result, unique per account, or null
  bool ofInstrument;  ///< exchange and code must name an instrument, which also supplies an absent security name
  EBookFile file;     ///< a book without an optional file has no records of the kind

  /// "accounts.csv"
  std::string fileName() const { return std::string(des.name()) + ".csv"; }
  /// The field that holds the record's account, null when records of the kind belong to no account.
  const rdservice::CFieldDes* accountField() const;
};

/// Every kind, in an order in which each refers only to those before it. A new kind is one more entry.
const std::vector<CRecordKind>& recordKinds();

/// Statistics: no table, but sums over the unclosed compacts.
const CRecordKind& statisticsKind();

/// Null when the counter keeps no records of the type.
const CRecordKind* recordKind(int typeId);

}  // namespace counter
