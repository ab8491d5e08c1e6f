#pragma once

#include "rdservice/rdservice_enums.h"

namespace VN {

/// Ids of the compacts panel's tables.
enum ECompactTableId : int {
  TableUnclosedCompacts = 0,
  TableClosedCompacts = 1,
  TableCompactChanges = 2,
  TableStatistics = 3,
};

/// File ids (record type id × 100 + field number) that the tables look columns up by.
enum ECompactFileId : int {
  FileIdUnclosedCode = 1391603,
  FileIdUnclosedSource = 1391605,
  FileIdUnclosedPriority = 1391618,
  FileIdClosedCode = 1391503,
  FileIdChangeCode = 1390703,
  FileIdStatisticsCode = 1391702,
};

/// Numbers of the columns that the tables add, by which saved layouts know them.
enum ECompactColumn : int {
  SelectColumn = 1,
  RenewalDaysColumn = 2,
  PriorityEditColumn = 3,
  PriorityTextColumn = 4,
  HoldingColumn = 5,
  NameColumn = 6,
};

/// Rows of a page, as far as the counter sets no other limit.
constexpr int PAGE_SIZE = 500;

/// The record type that a compact table accepts.
constexpr int recordTypeOfTable(int tableId) {
  return tableId == TableUnclosedCompacts ? rdservice::RecordStkUnClosedCompacts : rdservice::RecordStkClosedCompacts;
}

}  // namespace VN
