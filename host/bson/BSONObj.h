#pragma once

#include "host_api.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bson {

/// An immutable BSON document; copies share its bytes. Any thread.
class HOST_API BSONObj {
 public:
  /// The empty document: 5 bytes.
  BSONObj();
  ~BSONObj();
  BSONObj(const BSONObj&);
  BSONObj& operator=(const BSONObj&);

  /// The document held in `bytes`, which are copied. Damaged bytes give the empty document, and `ok` (when given)
  /// becomes false.
  static BSONObj fromBytes(const void* bytes, std::size_t size, bool* ok = nullptr);

  /// Length in bytes; an empty document has 5.
  int objsize() const;
  bool isEmpty() const;
  const char* objdata() const;

  bool hasField(std::string_view name) const;
  /// Number of the field converted to an integer; 0 when it is absent or not a number.
  std::int64_t getLong(std::string_view name) const;
  int getIntField(std::string_view name) const;
  double getDouble(std::string_view name) const;
  bool getBoolField(std::string_view name) const;
  /// Text of the field; empty when it is absent or not a text.
  std::string getStringField(std::string_view name) const;

  /// Extended JSON; "{ }" for the empty document.
  std::string toString() const;

 private:
  friend class BSONObjBuilder;
  std::shared_ptr<const std::vector<unsigned char>> m_bytes;
};

using bo = BSONObj;

/// Builds a document field by field. One thread at a time.
class HOST_API BSONObjBuilder {
 public:
  BSONObjBuilder();
  ~BSONObjBuilder();
  BSONObjBuilder(const BSONObjBuilder&) = delete;
  BSONObjBuilder& operator=(const BSONObjBuilder&) = delete;

  BSONObjBuilder& append(std::string_view name, int value);
  BSONObjBuilder& append(std::string_view name, std::int64_t value);
  BSONObjBuilder& append(std::string_view name, double value);
  BSONObjBuilder& append(std::string_view name, bool value);
  BSONObjBuilder& append(std::string_view name, const char* value);
  BSONObjBuilder& append(std::string_view name, const std::string& value);
  BSONObjBuilder& append(std::string_view name, const BSONObj& value);

  /// The document built so far; the builder stays usable.
  BSONObj obj() const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace bson
