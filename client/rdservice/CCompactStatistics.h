#pragma once

#include "rdservice/CExactSum.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace rdservice {

/// What an account's unclosed compacts add up to for each security, type and source, kept exactly while compacts come,
/// change and go: a change takes the same time however many there are. Compacts on which nothing is owed any more do
/// not count: the counter has closed them. Whoever owns it locks.
class CCompactStatistics {
 public:
  /// How many count.
  std::size_t compacts() const { return m_compacts; }

  void add(const CStkUnClosedCompacts& compact) { change(compact, 1); }
  void subtract(const CStkUnClosedCompacts& compact) { change(compact, -1); }

  struct CChange {
    bool isWholeSet = false;             ///< other statistics are gone, because a group has lost its last compact
    std::vector<IDataPtr> statistics{};  ///< new records, in any order
  };
  /// What has changed since the last call.
  CChange takeChange();
  /// Has the next change be the whole set.
  void startOver() { m_isOtherSet = true; }

 private:
  static constexpr std::size_t VOLUMES = 2;
  static constexpr std::size_t AMOUNTS = 6;

  /// Texts of the pool are told by their addresses.
  struct CGroup {
    const std::string* exchangeId;
    const std::string* code;
    char compactType;
    char source;

    bool operator==(const CGroup& other) const;
  };
  struct CGroupHash {
    std::size_t operator()(const CGroup& group) const;
  };
  struct CSums {
    CInternedText exchangeId{};
    CInternedText code{};
    CAccountInfoPtr account{};
    std::array<std::int64_t, VOLUMES> volumes{};
    std::array<CExactSum, AMOUNTS> amounts{};
    std::size_t compacts = 0;
    bool isChanged = false;
  };
  using CGroups = std::unordered_map<CGroup, CSums, CGroupHash>;

  void change(const CStkUnClosedCompacts& compact, int sign);
  std::vector<IDataPtr> all() const;
  static IDataPtr statisticOf(const CGroups::value_type& group);

  CGroups m_groups;
  std::vector<CGroup> m_changed;
  std::size_t m_compacts = 0;
  bool m_isOtherSet = false;
};

}  // namespace rdservice
