#pragma once

#include "host_api.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace rdservice {

class CStructDes;
class IData;
using IDataPtr = boost::shared_ptr<IData>;

/// Gives the data centre access to the version of records.
struct CDataVersion;

/// A record or request of the trading service.
///
/// A record is filled by the thread that makes it, then published (stored, or handed to another thread); from then on
/// nobody writes to it. Whoever wants another value copies, edits the copy and publishes that.
class HOST_API IData {
 public:
  virtual ~IData();

  /// The row key of the record: unique among the records of its type and account.
  virtual std::string getKey() const = 0;

  /// The record type id (`ERecordType`).
  virtual int getBaseId() const = 0;

  /// A deep copy, unpublished (version 0).
  virtual IDataPtr copy() const = 0;

  /// The fields of the record's type; lives as long as the process.
  virtual const CStructDes& getStructDes() const = 0;

  /// Hash of type and key, mixed with `seed`.
  virtual std::int64_t getHashKey(std::int64_t seed) const;

  /// 0 until the record is stored in the data centre; then the store's rising number of this record.
  std::uint64_t version() const { return (m_version & UNPUBLISHED) == 0 ? m_version & ~OF_REPLY : 0; }

  /// Whether a stored record came with the reply to a query; false when it was pushed or modified.
  bool isOfReply() const { return (m_version & (UNPUBLISHED | OF_REPLY)) == OF_REPLY; }

 protected:
  IData();
  /// Copies are unpublished.
  IData(const IData& other);
  IData& operator=(const IData& other);

 private:
  friend struct CDataVersion;
  /// Set in `m_version` while it is not the version but the data centre's note about an unpublished record.
  static constexpr std::uint64_t UNPUBLISHED = std::uint64_t(1) << 63;
  static constexpr std::uint64_t OF_REPLY = std::uint64_t(1) << 62;

  std::uint64_t m_version = 0;
};

}  // namespace rdservice
