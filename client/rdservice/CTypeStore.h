#pragma once

#include "rdservice/IData.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace rdservice {

/// Published records of one type in order of arrival, found by key. Whoever owns it locks.
///
/// Debug builds remember a fingerprint of each record, and stop the program when a record is read singly or replaced
/// and has been written to since.
class CTypeStore {
 public:
  static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

  std::size_t size() const { return m_records.size(); }
  const std::vector<IDataPtr>& records() const { return m_records; }
  void reserve(std::size_t count);

  /// The place of the key, or NONE. Places do not change while the store lives.
  std::size_t find(const std::string& key) const;
  const IDataPtr& at(std::size_t place) const;

  /// When the record's values were true, in the owner's count: the mark of its reply, or the version that it was pushed
  /// or modified with.
  std::uint64_t basis(std::size_t place) const { return m_bases[place]; }
  void setBasis(std::size_t place, std::uint64_t basis) { m_bases[place] = basis; }

  /// Appends; the key must be new. Returns the place.
  std::size_t append(const std::string& key, IDataPtr record, std::uint64_t basis);
  /// Returns the record that stood there, for freeing it outside a lock.
  IDataPtr replace(std::size_t place, IDataPtr record, std::uint64_t basis);

 private:
  std::vector<IDataPtr> m_records;
  std::vector<std::uint64_t> m_bases;
  std::unordered_map<std::string, std::size_t> m_places;
#ifndef NDEBUG
  std::vector<std::uint64_t> m_fingerprints;
#endif
};

}  // namespace rdservice
