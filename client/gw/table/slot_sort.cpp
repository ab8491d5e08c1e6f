#include "gw/table/slot_sort.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <utility>

namespace GW {

namespace {

constexpr unsigned KEY_BITS = 64;
constexpr unsigned SHORT_BITS = 32;
constexpr unsigned DIGIT_BITS = 11;
constexpr std::size_t DIGITS = std::size_t{1} << DIGIT_BITS;
constexpr unsigned MAX_PASSES = (SHORT_BITS + DIGIT_BITS - 1) / DIGIT_BITS;
constexpr std::size_t RADIX_FROM = 512;  ///< below, comparing is faster

unsigned bitsOf(std::uint64_t value) {
  unsigned bits = 0;
  for (; value != 0; value >>= 1) ++bits;
  return bits;
}

/// Keys in 32 bits and in the same order; keys that differ may become equal. Of numbers the distance to the smallest
/// is taken, of texts the bits in which they differ at all, whichever loses less.
class CShortKeys {
 public:
  CShortKeys(const std::vector<int>& slots, const COrderBy& by) {
    const std::uint64_t first = by.key(slots.front());
    std::uint64_t largest = first;
    std::uint64_t varying = 0;
    m_smallest = first;
    for (const int slot : slots) {
      const std::uint64_t key = by.key(slot);
      m_smallest = std::min(m_smallest, key);
      largest = std::max(largest, key);
      varying |= key ^ first;
    }
    m_bits = bitsOf(largest - m_smallest);
    if (m_bits > SHORT_BITS) takeRuns(varying);
    m_dropped = m_bits > SHORT_BITS ? m_bits - SHORT_BITS : 0;
  }

  bool isExact() const { return m_dropped == 0; }
  unsigned bits() const { return m_bits - m_dropped; }

  std::uint64_t operator()(std::uint64_t key) const {
    if (m_runCount == 0) return (key - m_smallest) >> m_dropped;
    std::uint64_t joined = 0;
    for (std::size_t i = 0; i < m_runCount; ++i) joined |= (key & m_runs[i].mask) >> m_runs[i].shift;
    return joined >> m_dropped;
  }

 private:
  /// Adjacent bits that move down together.
  struct CRun {
    std::uint64_t mask;
    unsigned shift;
  };

  void takeRuns(std::uint64_t varying) {
    std::array<CRun, KEY_BITS / 2> runs{};
    std::size_t count = 0;
    unsigned bits = 0;
    for (unsigned bit = 0; bit < KEY_BITS; ++bit) {
      const std::uint64_t mask = std::uint64_t{1} << bit;
      if ((varying & mask) == 0) continue;
      const bool goesOn = bit > 0 && (varying & (mask >> 1)) != 0;
      if (!goesOn) runs[count++] = {0, bit - bits};
      runs[count - 1].mask |= mask;
      ++bits;
    }
    if (bits >= m_bits) return;
    m_bits = bits;
    m_runs = runs;
    m_runCount = count;
  }

  std::uint64_t m_smallest;
  unsigned m_bits;
  unsigned m_dropped = 0;  ///< of the lowest bits
  std::array<CRun, KEY_BITS / 2> m_runs{};
  std::size_t m_runCount = 0;
};

using CEntries = std::vector<std::uint64_t>;  ///< the short key above, the slot below

int slotOf(std::uint64_t entry) { return static_cast<int>(entry & 0xffffffffU); }

/// By short key; stable.
void radixSort(CEntries& entries, unsigned bits) {
  const unsigned passes = (bits + DIGIT_BITS - 1) / DIGIT_BITS;
  const auto digitOf = [](std::uint64_t entry, unsigned pass) {
    return (entry >> (SHORT_BITS + pass * DIGIT_BITS)) & (DIGITS - 1);
  };
  std::array<std::array<std::uint32_t, DIGITS>, MAX_PASSES> counts{};
  for (const std::uint64_t entry : entries) {
    for (unsigned pass = 0; pass < passes; ++pass) ++counts[pass][digitOf(entry, pass)];
  }
  CEntries other(entries.size());
  for (unsigned pass = 0; pass < passes; ++pass) {
    auto& count = counts[pass];
    if (count[digitOf(entries.front(), pass)] == entries.size()) continue;  // all alike
    std::uint32_t begin = 0;
    for (std::uint32_t& c : count) begin += std::exchange(c, begin);
    for (const std::uint64_t entry : entries) other[count[digitOf(entry, pass)]++] = entry;
    entries.swap(other);
  }
}

using CIterator = std::vector<int>::iterator;

void sortByComparing(CIterator begin, CIterator end, const COrderBy& by) {
  std::sort(begin, end, [&by](int a, int b) { return by.isBefore(a, b); });
}

/// Puts slots in order whose keys are equal, also the finer ones of the stages before. They are in order of slots.
void sortTies(CIterator begin, CIterator end, const ITieBreaker& ties, int stage) {
  constexpr std::ptrdiff_t FINER_FROM = 64;
  std::vector<std::uint64_t> keys;
  const std::vector<int> slots(begin, end);
  if (end - begin < FINER_FROM || !ties.finerKeys(slots, stage, keys)) {
    std::sort(begin, end, [&ties](int a, int b) { return ties.isBefore(a, b); });
    return;
  }
  COrderBy by;
  by.keys = &keys;
  std::vector<int> places(slots.size());
  std::iota(places.begin(), places.end(), 0);
  sortSlots(places, by);
  std::transform(places.begin(), places.end(), begin,
                 [&slots](int place) { return slots[static_cast<std::size_t>(place)]; });
  for (std::size_t first = 0; first < places.size();) {
    const std::uint64_t key = by.key(places[first]);
    std::size_t last = first + 1;
    while (last < places.size() && by.key(places[last]) == key) ++last;
    if (last - first > 1 && ties.decidesFiner(key, stage))
      sortTies(begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(last), ties, stage + 1);
    first = last;
  }
}

/// Sorts slots of few different keys by counting them; false, with the slots as they were, when there are many.
bool sortFew(std::vector<int>& slots, const COrderBy& by) {
  constexpr std::size_t MOST = 1024;
  constexpr std::size_t PLACES = 4 * MOST;
  constexpr std::uint64_t MULTIPLIER = 0x9E3779B97F4A7C15U;
  struct CKind {
    std::uint64_t key;
    std::uint32_t count;
    std::uint32_t begin;
  };
  std::vector<CKind> kinds;
  std::array<std::uint16_t, PLACES> places{};  // number of the kind + 1, by hash
  std::vector<std::uint16_t> kindOf(slots.size());
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const std::uint64_t key = by.key(slots[i]);
    std::size_t place = (key * MULTIPLIER) >> 52;
    static_assert(PLACES == std::size_t{1} << (KEY_BITS - 52), "the hash's bits");
    while (places[place] != 0 && kinds[places[place] - 1U].key != key) place = (place + 1) % PLACES;
    if (places[place] == 0) {
      if (kinds.size() == MOST) return false;
      kinds.push_back({key, 0, 0});
      places[place] = static_cast<std::uint16_t>(kinds.size());
    }
    kindOf[i] = static_cast<std::uint16_t>(places[place] - 1U);
    ++kinds[kindOf[i]].count;
  }
  std::vector<std::uint16_t> order(kinds.size());
  std::iota(order.begin(), order.end(), std::uint16_t{0});
  std::sort(order.begin(), order.end(), [&](auto a, auto b) { return kinds[a].key < kinds[b].key; });
  std::uint32_t begin = 0;
  for (const std::uint16_t kind : order) kinds[kind].begin = std::exchange(begin, begin + kinds[kind].count);
  const std::vector<int> unsorted = slots;
  for (std::size_t i = 0; i < unsorted.size(); ++i) slots[kinds[kindOf[i]].begin++] = unsorted[i];
  for (const CKind& kind : kinds) {
    const auto end = slots.begin() + static_cast<std::ptrdiff_t>(kind.begin);
    if (kind.count > 1 && by.decides(kind.key))
      sortTies(end - static_cast<std::ptrdiff_t>(kind.count), end, *by.ties, 0);
  }
  return true;
}

/// Puts slots in order whose short keys are alike.
void sortAlike(CIterator begin, CIterator end, const COrderBy& by, bool isExact) {
  const std::uint64_t key = by.key(*begin);
  const bool isSame = isExact || std::all_of(begin + 1, end, [&](int slot) { return by.key(slot) == key; });
  if (!isSame)
    sortByComparing(begin, end, by);
  else if (by.decides(key))
    sortTies(begin, end, *by.ties, 0);
}

}  // namespace

bool ITieBreaker::finerKeys(const std::vector<int>&, int, std::vector<std::uint64_t>&) const { return false; }
bool ITieBreaker::decidesFiner(std::uint64_t, int) const { return true; }

void sortSlots(std::vector<int>& slots, const COrderBy& by) {
  if (slots.size() < RADIX_FROM) {
    sortByComparing(slots.begin(), slots.end(), by);
    return;
  }
  // What is in order of slots stays so where the keys are equal.
  if (!std::is_sorted(slots.begin(), slots.end())) std::sort(slots.begin(), slots.end());
  if (sortFew(slots, by)) return;
  const CShortKeys shortKey(slots, by);
  CEntries entries;
  entries.reserve(slots.size());
  for (const int slot : slots)
    entries.push_back(shortKey(by.key(slot)) << SHORT_BITS | static_cast<std::uint32_t>(slot));
  radixSort(entries, shortKey.bits());
  std::transform(entries.begin(), entries.end(), slots.begin(), slotOf);
  if (by.ties == nullptr && shortKey.isExact()) return;
  for (std::size_t begin = 0; begin < entries.size();) {
    std::size_t end = begin + 1;
    while (end < entries.size() && entries[end] >> SHORT_BITS == entries[begin] >> SHORT_BITS) ++end;
    if (end - begin > 1) {
      const auto first = slots.begin() + static_cast<std::ptrdiff_t>(begin);
      sortAlike(first, first + static_cast<std::ptrdiff_t>(end - begin), by, shortKey.isExact());
    }
    begin = end;
  }
}

}  // namespace GW
