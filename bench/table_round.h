#pragma once

#include "bench_records.h"

#include "rdservice/CStkUnClosedCompacts.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <vector>

/// What one does with a table all day, in the order in which it is measured.
enum EOperation : int {
  OpLoad,
  OpReplace,
  OpSortText,
  OpSortName,
  OpSortAmount,
  OpFilterFirst,
  OpFilter,
  OpClearFilter,
  OpPush,
  OpCount
};

struct CRound {
  const std::vector<rdservice::IDataPtr>& records;
  const std::vector<rdservice::IDataPtr>& others;  ///< of the same keys
  std::vector<std::vector<rdservice::IDataPtr>> pushes;
};

namespace round_columns {

constexpr int FILE_ID_AMOUNT = 1391609;
constexpr int FILE_ID_TEXT = 1391614;
constexpr int FILE_ID_NAME = 1391622;

/// Both tables have one column for each field, in the field table's order.
inline int of(int fileId) {
  const auto& des = rdservice::CStkUnClosedCompacts::structDes();
  return int(des.fieldByFileId(fileId) - des.begin());
}

}  // namespace round_columns

/// A tenth of the names.
inline QStringList acceptedNames(int first) {
  QStringList names;
  for (int i = 0; i < BENCH_NAMES / 10; ++i)
    names.push_back(QString::fromUtf8("证券%1").arg((first + i * 7) % BENCH_NAMES));
  return names;
}

/// Every operation once. `measure(EOperation, run)` calls `run`, which may return the
/// milliseconds to count itself; `note(column)` looks at what is shown; a column tells
/// that only its cells are decided, because rows that are equal there may stand in any order.
template <class Table, class Measure, class Note>
void runRound(Table& table, const CRound& round, Measure measure, Note note) {
  constexpr int EVERY_COLUMN = -1;
  const int amount = round_columns::of(round_columns::FILE_ID_AMOUNT);
  const int text = round_columns::of(round_columns::FILE_ID_TEXT);
  const int name = round_columns::of(round_columns::FILE_ID_NAME);
  table.sort(amount, Qt::AscendingOrder);
  table.prepare(round.others);
  measure(OpLoad, [&] { table.load(round.others); });
  note(EVERY_COLUMN);
  table.prepare(round.records);
  measure(OpReplace, [&] { table.load(round.records); });
  note(EVERY_COLUMN);
  for (const auto& changed : round.pushes) {
    measure(OpPush, [&] { return table.push(changed); });
    note(EVERY_COLUMN);
  }
  for (const Qt::SortOrder order : {Qt::DescendingOrder, Qt::AscendingOrder}) {
    measure(OpSortText, [&] { table.sort(text, order); });
    note(EVERY_COLUMN);
    measure(OpSortName, [&] { table.sort(name, order); });
    note(name);
    measure(OpSortAmount, [&] { table.sort(amount, order); });
    note(EVERY_COLUMN);
  }
  measure(OpFilterFirst, [&] { table.filter(name, acceptedNames(3)); });
  note(EVERY_COLUMN);
  table.filter(name, {});
  for (const int first : {0, 1, 2}) {
    measure(OpFilter, [&] { table.filter(name, acceptedNames(first)); });
    note(EVERY_COLUMN);
    measure(OpClearFilter, [&] { table.filter(name, {}); });
    note(EVERY_COLUMN);
  }
}
