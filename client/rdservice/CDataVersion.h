#pragma once

#include "rdservice/IData.h"

#include <cstdint>

namespace rdservice {

/// The one way to stamp a record.
struct CDataVersion {
  /// Publishes. Only a store does it, under its lock, before anybody else can see the record.
  static void stamp(IData& record, std::uint64_t version, bool ofReply = false) {
    record.m_version = version | (ofReply ? IData::OF_REPLY : 0);
  }

  /// Notes with an unpublished record of a reply the mark that was taken when its request was sent.
  static void stampReply(IData& record, std::uint64_t mark) {
    if (record.version() == 0) record.m_version = mark | IData::UNPUBLISHED;
  }

  /// The mark noted with the record; 0 when it did not come with a reply.
  static std::uint64_t mark(const IData& record) {
    return (record.m_version & IData::UNPUBLISHED) != 0 ? record.m_version & ~IData::UNPUBLISHED : 0;
  }
};

}  // namespace rdservice
