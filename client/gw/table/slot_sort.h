#pragma once

#include <cstdint>
#include <vector>

namespace GW {

/// What decides between slots of equal keys.
class ITieBreaker {
 public:
  virtual ~ITieBreaker() = default;
  /// Whether slots of this key may differ in more than their number; if not, they are in order of their numbers.
  virtual bool decides(std::uint64_t key) const = 0;
  /// Complete: of two different slots exactly one is before the other.
  virtual bool isBefore(int slot, int other) const = 0;

  /// What else parts slots whose keys are equal, for sorting many of them: for each of `slots` one that rises in the
  /// order's direction. Of stage 0, or of the next stage for slots that are equal in the one before; false when only
  /// `isBefore` knows more.
  virtual bool finerKeys(const std::vector<int>& slots, int stage, std::vector<std::uint64_t>& keys) const;
  /// Whether slots of this finer key may yet differ.
  virtual bool decidesFiner(std::uint64_t key, int stage) const;
};

/// What slots are put in order by.
struct COrderBy {
  const std::vector<std::uint64_t>* keys = nullptr;  ///< by slot; null: every key is equal. Not owned.
  bool isDescending = false;                         ///< of the keys; ties are as they are
  const ITieBreaker* ties = nullptr;                 ///< null: equal keys by slot. Not owned.

  /// Rises in the order's direction.
  std::uint64_t key(int slot) const {
    if (keys == nullptr) return 0;
    const std::uint64_t held = (*keys)[static_cast<std::size_t>(slot)];
    return isDescending ? ~held : held;
  }
  /// `key` is one that `key()` returned.
  bool decides(std::uint64_t key) const { return ties != nullptr && ties->decides(isDescending ? ~key : key); }

  bool isBefore(int slot, int other) const {
    const std::uint64_t mine = key(slot);
    const std::uint64_t others = key(other);
    return mine != others ? mine < others : isTieBefore(mine, slot, other);
  }
  /// Of slots whose keys are both `key`.
  bool isTieBefore(std::uint64_t key, int slot, int other) const {
    return decides(key) ? ties->isBefore(slot, other) : slot < other;
  }
};

/// Many slots are sorted in time in proportion to their number, as far as their keys decide.
void sortSlots(std::vector<int>& slots, const COrderBy& by);

}  // namespace GW
