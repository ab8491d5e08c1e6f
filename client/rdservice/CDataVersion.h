#pragma once

#include "rdservice/IData.h"

#include <cstdint>

namespace rdservice {

/// The one way to stamp a record. Only a store does it, under its lock, before anybody else can see the record.
struct CDataVersion {
  static void stamp(IData& record, std::uint64_t version) { record.m_version = version; }
};

}  // namespace rdservice
