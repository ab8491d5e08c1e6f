#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace GW {

/// What decides between entries of equal keys.
class ITieBreaker {
 public:
  virtual ~ITieBreaker() = default;
  /// Whether entries of this key may differ in more than their slots; if not, they are in order of slots.
  virtual bool decides(std::uint64_t key) const = 0;
  /// Complete: of two different slots exactly one is before the other.
  virtual bool isBefore(int slot, int other) const = 0;
};

/// A slot with its sortable key, ascending.
struct COrderEntry {
  std::uint64_t key;
  int slot;
};

/// The slots of a table in an order, in blocks of bounded size, so that one entry goes in or out without touching the
/// others: position to slot and slot to position take O(log n), a change O(log n + block).
class CBlockOrder {
 public:
  /// Null: equal keys by slot. Only while empty; not owned.
  void setTies(const ITieBreaker* ties);

  int size() const { return m_size; }
  void clear();
  /// Replaces everything by entries in order.
  void assign(const std::vector<COrderEntry>& sorted);
  /// Puts entries, in order among themselves, between those held; for many of them.
  void merge(const std::vector<COrderEntry>& sorted);
  void insert(COrderEntry entry);
  /// Nothing happens when it is not there.
  void erase(COrderEntry entry);

  int slotAt(int row) const;
  /// -1 when it is not there.
  int rowOf(COrderEntry entry) const;
  /// Calls `visit(COrderEntry)` for every entry in order.
  template <class F>
  void forEach(F visit) const {
    for (const auto& block : m_blocks) {
      for (int i = 0; i < block->count; ++i) visit(COrderEntry{block->keys[i], block->slots[i]});
    }
  }

  /// Sorts entries as the order would.
  void sort(std::vector<COrderEntry>& entries) const;

  std::size_t memory() const;

 private:
  static constexpr int BLOCK = 512;
  static constexpr int FILLED = 448;  ///< entries that a block made in bulk gets, with room for insertions

  struct CBlock {
    int count = 0;
    std::uint64_t keys[BLOCK];
    int slots[BLOCK];
  };

  bool decides(std::uint64_t key) const { return m_ties != nullptr && m_ties->decides(key); }
  bool isBefore(COrderEntry a, COrderEntry b) const {
    if (a.key != b.key) return a.key < b.key;
    return decides(a.key) ? m_ties->isBefore(a.slot, b.slot) : a.slot < b.slot;
  }
  /// The last block whose first entry is not after `entry`, or the first block.
  std::size_t blockOf(COrderEntry entry) const;
  /// The position in the block of the first entry that is not before `entry`.
  int placeIn(const CBlock& block, COrderEntry entry) const;
  void updateStarts() const;

  std::vector<std::unique_ptr<CBlock>> m_blocks;  ///< none is empty
  int m_size = 0;
  const ITieBreaker* m_ties = nullptr;
  mutable std::vector<int> m_starts;  ///< row of each block's first entry; made when first asked for
  mutable bool m_startsValid = false;
};

}  // namespace GW
