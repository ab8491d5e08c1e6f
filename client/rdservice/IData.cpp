#include "rdservice/IData.h"

#include "rdservice/hash_mix.h"

#include <cassert>
#include <functional>

namespace rdservice {

IData::IData() = default;
IData::~IData() = default;
IData::IData(const IData&) {}

IData& IData::operator=(const IData&) {
  assert(version() == 0 && "a published record is never written");
  return *this;
}

std::int64_t IData::getHashKey(std::int64_t seed) const {
  const std::uint64_t hash = mixHash(static_cast<std::uint64_t>(seed), static_cast<std::uint64_t>(getBaseId()));
  return static_cast<std::int64_t>(mixHash(hash, std::hash<std::string>()(getKey())));
}

}  // namespace rdservice
