#pragma once

#include "rdservice/CHashedPlaces.h"
#include "rdservice/IData.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace rdservice {

/// Published records of one type in order of arrival, found by key. Whoever owns it locks. Keys are hashed by the
/// caller (`CHashedPlaces::hash`), outside the lock.
///
/// Debug builds remember a fingerprint of each record, and stop the program when a record is read singly or replaced
/// and has been written to since.
class CTypeStore {
 public:
  static constexpr std::size_t NONE = CHashedPlaces::NONE;

  std::size_t size() const { return m_records.size(); }
  const std::vector<IDataPtr>& records() const { return m_records; }
  void reserve(std::size_t count);

  /// The place of the key, or NONE. Places do not change while the store lives.
  std::size_t find(std::uint32_t hash, const std::string& key) const;
  /// The same, faster when the key stands at `guess`: replies come again and again in one order.
  std::size_t find(std::uint32_t hash, const std::string& key, std::size_t guess) const;
  std::size_t find(const std::string& key) const { return find(CHashedPlaces::hash(key), key); }
  /// Said `PREFETCH_AHEAD` steps before a key is looked up, in long loops; `guess` is the present one's.
  void expect(std::uint32_t hash, std::size_t guess) const;
  const IDataPtr& at(std::size_t place) const;

  /// When the record's values were true, in the owner's count: the mark of its reply, or the version that it was pushed
  /// or modified with.
  std::uint64_t basis(std::size_t place) const { return m_bases[place]; }
  void setBasis(std::size_t place, std::uint64_t basis) { m_bases[place] = basis; }

  /// Appends; the record's key must be new and have that hash. Returns the place.
  std::size_t append(std::uint32_t hash, IDataPtr record, std::uint64_t basis);
  /// Returns the record that stood there, for freeing it outside a lock.
  IDataPtr replace(std::size_t place, IDataPtr record, std::uint64_t basis);

 private:
  std::vector<IDataPtr> m_records;
  std::vector<std::uint64_t> m_bases;
  CHashedPlaces m_places;
#ifndef NDEBUG
  std::vector<std::uint64_t> m_fingerprints;
#endif
};

}  // namespace rdservice
