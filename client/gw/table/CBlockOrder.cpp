#include "gw/table/CBlockOrder.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

constexpr unsigned DIGIT_BITS = 11;
constexpr std::size_t DIGITS = std::size_t{1} << DIGIT_BITS;
constexpr unsigned PASSES = (64 + DIGIT_BITS - 1) / DIGIT_BITS;
constexpr std::size_t RADIX_FROM = 1024;  ///< below, comparing is faster

std::size_t digitOf(std::uint64_t key, unsigned pass) { return (key >> (pass * DIGIT_BITS)) & (DIGITS - 1); }

/// By key alone; stable.
void radixSort(std::vector<COrderEntry>& entries) {
  std::array<std::array<std::uint32_t, DIGITS>, PASSES> counts{};
  for (const COrderEntry& entry : entries) {
    for (unsigned pass = 0; pass < PASSES; ++pass) ++counts[pass][digitOf(entry.key, pass)];
  }
  std::vector<COrderEntry> other(entries.size());
  for (unsigned pass = 0; pass < PASSES; ++pass) {
    auto& count = counts[pass];
    if (count[digitOf(entries.front().key, pass)] == entries.size()) continue;  // all alike
    std::uint32_t begin = 0;
    for (std::uint32_t& c : count) begin += std::exchange(c, begin);
    for (const COrderEntry& entry : entries) other[count[digitOf(entry.key, pass)]++] = entry;
    entries.swap(other);
  }
}

}  // namespace

void CBlockOrder::setTies(const ITieBreaker* ties) {
  assert(m_size == 0);
  m_ties = ties;
}

void CBlockOrder::clear() {
  m_blocks.clear();
  m_size = 0;
  m_startsValid = false;
}

void CBlockOrder::assign(const std::vector<COrderEntry>& sorted) {
  clear();
  m_size = static_cast<int>(sorted.size());
  for (std::size_t begin = 0; begin < sorted.size(); begin += at(FILLED)) {
    auto block = std::unique_ptr<CBlock>(new CBlock);  // the entries beyond the count stay as they are
    const std::size_t end = std::min(sorted.size(), begin + at(FILLED));
    for (std::size_t i = begin; i < end; ++i) {
      block->keys[i - begin] = sorted[i].key;
      block->slots[i - begin] = sorted[i].slot;
    }
    block->count = static_cast<int>(end - begin);
    m_blocks.push_back(std::move(block));
  }
}

void CBlockOrder::merge(const std::vector<COrderEntry>& sorted) {
  if (sorted.empty()) return;
  std::vector<COrderEntry> all;
  all.reserve(at(m_size) + sorted.size());
  auto next = sorted.begin();
  forEach([&](COrderEntry held) {
    for (; next != sorted.end() && isBefore(*next, held); ++next) all.push_back(*next);
    all.push_back(held);
  });
  all.insert(all.end(), next, sorted.end());
  assign(all);
}

void CBlockOrder::insert(COrderEntry entry) {
  m_startsValid = false;
  ++m_size;
  if (m_blocks.empty()) m_blocks.push_back(std::make_unique<CBlock>());
  std::size_t index = blockOf(entry);
  if (m_blocks[index]->count == BLOCK) {
    CBlock& full = *m_blocks[index];
    auto upper = std::make_unique<CBlock>();
    upper->count = BLOCK / 2;
    full.count = BLOCK - upper->count;
    std::copy_n(full.keys + full.count, upper->count, upper->keys);
    std::copy_n(full.slots + full.count, upper->count, upper->slots);
    const bool goesUp = !isBefore(entry, {upper->keys[0], upper->slots[0]});
    m_blocks.insert(m_blocks.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(upper));
    if (goesUp) ++index;
  }
  CBlock& block = *m_blocks[index];
  const int place = placeIn(block, entry);
  std::copy_backward(block.keys + place, block.keys + block.count, block.keys + block.count + 1);
  std::copy_backward(block.slots + place, block.slots + block.count, block.slots + block.count + 1);
  block.keys[place] = entry.key;
  block.slots[place] = entry.slot;
  ++block.count;
}

void CBlockOrder::erase(COrderEntry entry) {
  if (m_blocks.empty()) return;
  const std::size_t index = blockOf(entry);
  CBlock& block = *m_blocks[index];
  const int place = placeIn(block, entry);
  if (place == block.count || block.slots[place] != entry.slot) return;
  m_startsValid = false;
  --m_size;
  --block.count;
  std::copy(block.keys + place + 1, block.keys + block.count + 1, block.keys + place);
  std::copy(block.slots + place + 1, block.slots + block.count + 1, block.slots + place);
  if (block.count >= BLOCK / 4) return;

  // A block that has become small joins its successor, so that their number stays in proportion to the entries.
  const auto it = m_blocks.begin() + static_cast<std::ptrdiff_t>(index);
  if (block.count == 0) {
    m_blocks.erase(it);
  } else if (index + 1 < m_blocks.size() && block.count + m_blocks[index + 1]->count <= FILLED) {
    const CBlock& joined = *m_blocks[index + 1];
    std::copy_n(joined.keys, joined.count, block.keys + block.count);
    std::copy_n(joined.slots, joined.count, block.slots + block.count);
    block.count += joined.count;
    m_blocks.erase(it + 1);
  }
}

int CBlockOrder::slotAt(int row) const {
  updateStarts();
  const auto it = std::upper_bound(m_starts.begin(), m_starts.end(), row) - 1;
  const CBlock& block = *m_blocks[static_cast<std::size_t>(it - m_starts.begin())];
  return block.slots[row - *it];
}

int CBlockOrder::rowOf(COrderEntry entry) const {
  if (m_blocks.empty()) return -1;
  updateStarts();
  const std::size_t index = blockOf(entry);
  const CBlock& block = *m_blocks[index];
  const int place = placeIn(block, entry);
  return place == block.count || block.slots[place] != entry.slot ? -1 : m_starts[index] + place;
}

void CBlockOrder::sort(std::vector<COrderEntry>& entries) const {
  const auto before = [this](const COrderEntry& a, const COrderEntry& b) { return isBefore(a, b); };
  if (entries.size() < RADIX_FROM) {
    std::sort(entries.begin(), entries.end(), before);
    return;
  }
  const bool isBySlot = std::is_sorted(entries.begin(), entries.end(),
                                       [](const COrderEntry& a, const COrderEntry& b) { return a.slot < b.slot; });
  radixSort(entries);
  if (m_ties == nullptr && isBySlot) return;  // the sort is stable
  for (auto begin = entries.begin(); begin != entries.end();) {
    const auto end =
        std::find_if(begin, entries.end(), [begin](const COrderEntry& entry) { return entry.key != begin->key; });
    if (end - begin > 1 && (!isBySlot || decides(begin->key))) std::sort(begin, end, before);
    begin = end;
  }
}

std::size_t CBlockOrder::memory() const {
  return m_blocks.size() * sizeof(CBlock) + m_blocks.capacity() * sizeof m_blocks[0] +
         m_starts.capacity() * sizeof m_starts[0];
}

std::size_t CBlockOrder::blockOf(COrderEntry entry) const {
  const auto it = std::upper_bound(m_blocks.begin(), m_blocks.end(), entry,
                                   [this](const COrderEntry& e, const std::unique_ptr<CBlock>& block) {
                                     return isBefore(e, {block->keys[0], block->slots[0]});
                                   });
  return it == m_blocks.begin() ? 0 : static_cast<std::size_t>(it - m_blocks.begin()) - 1;
}

int CBlockOrder::placeIn(const CBlock& block, COrderEntry entry) const {
  int low = 0;
  int high = block.count;
  while (low < high) {
    const int middle = (low + high) / 2;
    if (isBefore({block.keys[middle], block.slots[middle]}, entry))
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

void CBlockOrder::updateStarts() const {
  if (m_startsValid) return;
  m_starts.resize(m_blocks.size());
  int start = 0;
  for (std::size_t i = 0; i < m_blocks.size(); ++i) {
    m_starts[i] = start;
    start += m_blocks[i]->count;
  }
  m_startsValid = true;
}

}  // namespace GW
