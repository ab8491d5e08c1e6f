#pragma once

#include "rdservice/CStructDes.h"
#include "rdservice/prefetch.h"

#include <cstddef>
#include <vector>

namespace GW {

/// Reads one field of many records of one type: where the member stands is asked once, and what the loop comes to a
/// little later is fetched meanwhile. Records stand all over the memory, and waiting for each in turn takes longer than
/// all work on it.
class CFieldReader {
 public:
  /// How many records ahead a loop fetches.
  static constexpr std::size_t AHEAD = 32;

  /// `sample` is any record of the type.
  CFieldReader(const rdservice::CFieldDes& field, const rdservice::IData& sample)
      : m_offset(static_cast<const char*>(field.address(sample)) - reinterpret_cast<const char*>(&sample)) {}

  template <class T>
  const T& get(const rdservice::IData& record) const {
    return *reinterpret_cast<const T*>(reinterpret_cast<const char*>(&record) + m_offset);
  }

  template <class T>
  void prefetch(const rdservice::IData& record) const {
    rdservice::prefetch(&get<T>(record));
  }

  /// Calls `visit(const T&)` for the records from `first` to before `end`.
  template <class T, class F>
  void forEach(const std::vector<rdservice::IDataPtr>& records, std::size_t first, std::size_t end, F visit) const {
    for (std::size_t i = first; i < end; ++i) {
      if (i + AHEAD < end) prefetch<T>(*records[i + AHEAD]);
      visit(get<T>(*records[i]));
    }
  }

 private:
  std::ptrdiff_t m_offset;
};

}  // namespace GW
