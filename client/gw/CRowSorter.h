#pragma once

#include "gw/CTableChanges.h"
#include "gw/CTableColumn.h"

#include <QCollator>
#include <QCollatorSortKey>

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace GW {

/// The sort keys of a table's rows by slot, and the order they give. Numbers sort by number, codes by code, texts by
/// pinyin (zh_CN), delegate cells by their sort key or text; equal keys by arrival, whatever the direction.
class CRowSorter {
 public:
  CRowSorter();

  /// Forgets every key. Null: no sorting.
  void setColumn(const CTableColumn* column, int columnId, Qt::SortOrder order);
  bool isActive() const { return m_column != nullptr; }

  struct CKey {
    std::uint64_t number = 0;  ///< of a number, in its order; of a text, what only equal texts share, or 0
    std::optional<QCollatorSortKey> text;

    int compare(const CKey& other) const;
  };

  /// The costly part of sorting. A delegate's sort key function is called here.
  CKey makeKey(const CShownRow& row);
  /// Sets the key of a slot, which is an old one or the next new one; true when it differs from the one before.
  bool setKey(int slot, CKey key);
  /// By old slot: the new one, -1 for dropped.
  void renumber(const std::vector<int>& newSlots, std::size_t count);

  bool isBefore(int slot, int other) const;

 private:
  QCollator m_collator;
  const CTableColumn* m_column = nullptr;
  int m_columnId = -1;
  Qt::SortOrder m_order = Qt::AscendingOrder;
  std::vector<CKey> m_keys;
  std::unordered_map<const std::string*, QCollatorSortKey> m_interned;  ///< pooled texts repeat and are never freed
};

}  // namespace GW
