#pragma once

#include "gw/table/slot_sort.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace GW {

/// The slots of a table in an order, in blocks of bounded size, so that one slot goes in or out without touching the
/// others: position to slot and slot to position take O(log n + block), a change the same. A slot goes out before its
/// key changes.
class CBlockOrder {
 public:
  /// Only while empty.
  void setOrder(const COrderBy& by);

  int size() const { return m_size; }
  void clear();
  /// Replaces everything by slots in order.
  void assign(const std::vector<int>& sorted);
  /// Puts slots, in order among themselves, between those held; for many of them.
  void merge(const std::vector<int>& sorted);
  void insert(int slot);
  /// Nothing happens when it is not there.
  void erase(int slot);

  int slotAt(int row) const;
  /// -1 when it is not there.
  int rowOf(int slot) const;
  /// Calls `visit(slot)` for every slot in order.
  template <class F>
  void forEach(F visit) const {
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
      for (int place = 0; place < m_counts[i]; ++place) visit(m_blocks[i]->slots[place]);
    }
  }

  /// Sorts slots as the order would.
  void sort(std::vector<int>& slots) const { sortSlots(slots, m_by); }

  std::size_t memory() const;

 private:
  static constexpr int BLOCK = 512;
  static constexpr int FILLED = 448;  ///< slots that a block made in bulk gets, with room for insertions

  struct CBlock {
    int slots[BLOCK];
  };

  /// The last block whose first slot is not after that one, or the first block.
  std::size_t blockOf(int slot) const;
  /// The position in the block of the first slot that is not before that one.
  int placeFor(std::size_t block, int slot) const;
  /// The position of the slot itself; the block's count when it is not there.
  int placeOf(std::size_t block, int slot) const;
  void addBlock(std::size_t at, const int* slots, int count);
  void removeBlock(std::size_t at);
  void firstChanged(std::size_t block) { m_firstKeys[block] = m_by.key(m_blocks[block]->slots[0]); }
  void updateStarts() const;

  COrderBy m_by;
  int m_size = 0;
  std::vector<std::unique_ptr<CBlock>> m_blocks;  ///< none is empty
  std::vector<int> m_counts;                      ///< by block
  std::vector<std::uint64_t> m_firstKeys;         ///< by block, of its first slot
  mutable std::vector<int> m_starts;              ///< row of each block's first slot; made when first asked for
  mutable bool m_startsValid = false;
};

}  // namespace GW
