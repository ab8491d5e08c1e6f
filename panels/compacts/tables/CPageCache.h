#pragma once

#include "compacts/tables/CPlaceIndex.h"
#include "rdservice/IData.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VN {

/// Which records a paged table takes, and how its counter hands them out.
struct CPageRules {
  int recordType = 0;    ///< type id of the rows
  int compactType = 32;  ///< rdservice::EKVCompactType; 32 for all
  bool repeats = false;  ///< rdservice::ConfigCollector::isGTJAQueryCompactsMode of the account's counter type

  /// False for null.
  bool takes(const rdservice::IDataPtr& record) const;
};

/// The counter's position of a compact, unclosed or closed; empty for other records.
std::string_view positionOf(const rdservice::IData& record);

/// Compacts in order of arrival, each key once, found by key and, where it is asked for, by position. About 80 bytes a
/// record beside the record. Not thread-safe; a set that is made on the strand needs no lock.
class CPageCache {
 public:
  static constexpr std::size_t NONE = CPlaceIndex::NONE;

  CPageCache() = default;
  /// The records that the rules take; of several with one key the last, in the first one's place.
  CPageCache(const std::vector<rdservice::IDataPtr>& records, const CPageRules& rules);

  /// That the records were taken for.
  int compactType() const { return m_compactType; }
  void setCompactType(int compactType) { m_compactType = compactType; }

  std::size_t size() const { return m_records.size(); }
  bool empty() const { return m_records.empty(); }
  const rdservice::IDataPtr& at(std::size_t place) const { return m_records[place]; }

  /// NONE when there is none.
  std::size_t find(const std::string& key) const;
  /// Whether a record has this position; no record has the empty one.
  bool hasPosition(std::string_view position) const;
  /// Makes `hasPosition` answer; once, best while the set is empty or nobody else sees it.
  void indexPositions();

  /// Appends the record, or puts it in the place of the one with its key, and returns that one. `keyHash`: of its key.
  rdservice::IDataPtr put(rdservice::IDataPtr record, std::uint64_t keyHash);

  /// Gives the records away.
  std::vector<rdservice::IDataPtr> release();
  /// Bytes held beside the records.
  std::size_t memory() const;

 private:
  std::size_t find(std::uint64_t keyHash, const rdservice::IData& record) const;
  void addPosition(std::size_t place);

  std::vector<rdservice::IDataPtr> m_records;
  CPlaceIndex m_keys;
  CPlaceIndex m_positions;
  bool m_hasPositions = false;
  int m_compactType = 32;
};

}  // namespace VN
