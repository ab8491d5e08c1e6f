#pragma once

#include "gw/CTableColumn.h"
#include "gw/table/CCell.h"
#include "gw/table/CTextOrder.h"

#include <cstdint>
#include <vector>

namespace GW {

/// The sort keys of one column by slot: numbers by number, codes by code, texts as `CTextOrder` says, boxes by their
/// state, editors by their number. GUI thread.
class CKeyColumn {
 public:
  /// The column lives longer and keeps its delegate.
  explicit CKeyColumn(const CTableColumn& column);

  /// Calls a delegate's order function, if it has one.
  std::uint64_t make(const CCell& cell);
  /// Appends the keys of the rows that have none yet. `items` are the column's cells by slot, null for none.
  void fill(const std::vector<rdservice::IDataPtr>& records, const CItemColumn* items);
  /// Whether there are keys for which `decides` is true.
  bool mayDecide() const;
  /// Whether cells of this key may yet differ; then `compare` tells.
  bool decides(std::uint64_t key) const;
  /// Of rows that are alike up to the characters of so many keys: those of the next ones, for which `decides` holds
  /// too. False when only `compare` tells.
  bool finerKeys(const std::vector<rdservice::IDataPtr>& records, const std::vector<int>& slots, int stage,
                 std::vector<std::uint64_t>& finer) const;
  /// Of two cells with that same key: negative, zero or positive.
  int compare(const CCell& a, const CCell& b) const;
  /// Whether `isVoid` will be true.
  bool isFull() const { return m_texts.isFull(); }
  /// True when every key must be made anew.
  bool isVoid() { return m_texts.renumberIfNeeded(); }

  std::vector<std::uint64_t> keys;  ///< by slot

 private:
  enum EKind : unsigned char { None, Field, Interned, Text, Account, Check, Value, NumberText, ItemText };

  std::uint64_t makeField(const rdservice::IData& record) const;
  void fillField(const std::vector<rdservice::IDataPtr>& records);
  std::uint64_t makeNumberText(const QString& text);

  const CTableColumn& m_column;
  EKind m_kind = None;
  CTextOrder m_texts;
};

}  // namespace GW
