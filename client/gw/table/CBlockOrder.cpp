#include "gw/table/CBlockOrder.h"

#include "gw/table/vector_growth.h"

#include <algorithm>
#include <cassert>

namespace GW {

namespace {

template <class T>
typename std::vector<T>::iterator nth(std::vector<T>& list, std::size_t index) {
  return list.begin() + static_cast<std::ptrdiff_t>(index);
}

}  // namespace

void CBlockOrder::setOrder(const COrderBy& by) {
  assert(m_size == 0);
  m_by = by;
}

void CBlockOrder::clear() {
  m_blocks.clear();
  m_counts.clear();
  m_firstKeys.clear();
  m_size = 0;
  m_startsValid = false;
}

void CBlockOrder::assign(const std::vector<int>& sorted) {
  clear();
  m_size = static_cast<int>(sorted.size());
  for (int begin = 0; begin < m_size; begin += FILLED)
    addBlock(m_blocks.size(), sorted.data() + begin, std::min(FILLED, m_size - begin));
}

void CBlockOrder::merge(const std::vector<int>& sorted) {
  if (sorted.empty()) return;
  if (m_size == 0) {
    assign(sorted);
    return;
  }
  std::vector<int> all;
  all.reserve(static_cast<std::size_t>(m_size) + sorted.size());
  auto next = sorted.begin();
  std::uint64_t nextKey = m_by.key(*next);
  const auto isNextBefore = [&](int held) {
    const std::uint64_t key = m_by.key(held);
    return nextKey != key ? nextKey < key : m_by.isTieBefore(key, *next, held);
  };
  forEach([&](int held) {
    while (next != sorted.end() && isNextBefore(held)) {
      all.push_back(*next);
      if (++next != sorted.end()) nextKey = m_by.key(*next);
    }
    all.push_back(held);
  });
  all.insert(all.end(), next, sorted.end());
  assign(all);
}

void CBlockOrder::insert(int slot) {
  m_startsValid = false;
  ++m_size;
  if (m_blocks.empty()) {
    addBlock(0, &slot, 1);
    return;
  }
  std::size_t index = blockOf(slot);
  if (m_counts[index] == BLOCK) {
    constexpr int HALF = BLOCK / 2;
    addBlock(index + 1, m_blocks[index]->slots + HALF, BLOCK - HALF);
    m_counts[index] = HALF;
    if (!m_by.isBefore(slot, m_blocks[index + 1]->slots[0])) ++index;
  }
  const int place = placeFor(index, slot);
  int* slots = m_blocks[index]->slots;
  std::copy_backward(slots + place, slots + m_counts[index], slots + m_counts[index] + 1);
  slots[place] = slot;
  ++m_counts[index];
  if (place == 0) firstChanged(index);
}

void CBlockOrder::erase(int slot) {
  if (m_blocks.empty()) return;
  const std::size_t index = blockOf(slot);
  const int place = placeOf(index, slot);
  int& count = m_counts[index];
  if (place == count) return;
  m_startsValid = false;
  --m_size;
  --count;
  int* slots = m_blocks[index]->slots;
  std::copy(slots + place + 1, slots + count + 1, slots + place);
  if (count == 0) {
    removeBlock(index);
    return;
  }
  if (place == 0) firstChanged(index);
  // A block that has become small joins its successor, so that their number stays in proportion to the slots.
  if (count < BLOCK / 4 && index + 1 < m_blocks.size() && count + m_counts[index + 1] <= FILLED) {
    std::copy_n(m_blocks[index + 1]->slots, m_counts[index + 1], slots + count);
    count += m_counts[index + 1];
    removeBlock(index + 1);
  }
}

int CBlockOrder::slotAt(int row) const {
  updateStarts();
  const auto it = std::upper_bound(m_starts.begin(), m_starts.end(), row) - 1;
  return m_blocks[static_cast<std::size_t>(it - m_starts.begin())]->slots[row - *it];
}

int CBlockOrder::rowOf(int slot) const {
  if (m_blocks.empty()) return -1;
  updateStarts();
  const std::size_t index = blockOf(slot);
  const int place = placeOf(index, slot);
  return place == m_counts[index] ? -1 : m_starts[index] + place;
}

std::size_t CBlockOrder::memory() const {
  return m_blocks.size() * sizeof(CBlock) + heldBytes(m_blocks) + heldBytes(m_counts) + heldBytes(m_firstKeys) +
         heldBytes(m_starts);
}

std::size_t CBlockOrder::blockOf(int slot) const {
  const std::uint64_t key = m_by.key(slot);
  const auto range = std::equal_range(m_firstKeys.begin(), m_firstKeys.end(), key);
  auto low = static_cast<std::size_t>(range.first - m_firstKeys.begin());
  auto high = static_cast<std::size_t>(range.second - m_firstKeys.begin());
  while (low < high) {  // blocks that begin with the same key
    const std::size_t middle = (low + high) / 2;
    if (m_by.isTieBefore(key, slot, m_blocks[middle]->slots[0]))
      high = middle;
    else
      low = middle + 1;
  }
  return low == 0 ? 0 : low - 1;
}

int CBlockOrder::placeFor(std::size_t block, int slot) const {
  const int* slots = m_blocks[block]->slots;
  const std::uint64_t key = m_by.key(slot);
  return static_cast<int>(std::lower_bound(slots, slots + m_counts[block], slot,
                                           [&](int held, int) {
                                             const std::uint64_t heldKey = m_by.key(held);
                                             return heldKey != key ? heldKey < key : m_by.isTieBefore(key, held, slot);
                                           }) -
                          slots);
}

int CBlockOrder::placeOf(std::size_t block, int slot) const {
  const int* slots = m_blocks[block]->slots;
  return static_cast<int>(std::find(slots, slots + m_counts[block], slot) - slots);
}

void CBlockOrder::addBlock(std::size_t at, const int* slots, int count) {
  auto block = std::unique_ptr<CBlock>(new CBlock);  // what is beyond the count stays as it is
  std::copy_n(slots, count, block->slots);
  m_firstKeys.insert(nth(m_firstKeys, at), m_by.key(slots[0]));
  m_counts.insert(nth(m_counts, at), count);
  m_blocks.insert(nth(m_blocks, at), std::move(block));
}

void CBlockOrder::removeBlock(std::size_t at) {
  m_firstKeys.erase(nth(m_firstKeys, at));
  m_counts.erase(nth(m_counts, at));
  m_blocks.erase(nth(m_blocks, at));
}

void CBlockOrder::updateStarts() const {
  if (m_startsValid) return;
  m_starts.resize(m_counts.size());
  int start = 0;
  for (std::size_t i = 0; i < m_counts.size(); ++i) {
    m_starts[i] = start;
    start += m_counts[i];
  }
  m_startsValid = true;
}

}  // namespace GW
