#pragma once

#include "host_api.h"
#include "rdservice/IData.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rdservice {

/// How a field is stored in its record.
enum class EFieldType : unsigned char {
  Account,   ///< CAccountInfoPtr
  Text,      ///< std::string, UTF-8
  Interned,  ///< CInternedText
  Char,      ///< char, a character code
  Int32,     ///< std::int32_t
  Int64,     ///< std::int64_t
  Double,    ///< double
};

/// How a field is shown and read from a file.
enum class EFieldFormat : unsigned char {
  Plain,
  Enum,    ///< character or integer code of `enumType`, shown by its item name
  Date,    ///< Julian day number, shown as yyyy-MM-dd; 0 is no date, shown empty
  Volume,  ///< shares, shown with thousands separators
  Amount,  ///< yuan, shown with two decimals and thousands separators
};

/// One field of a record type: the one source for columns, sort keys, filters, SQL columns and book files.
struct CFieldDes {
  int number;         ///< field number; the file id is type id × 100 + number
  const char* name;   ///< column name in SQL and in book files
  const char* title;  ///< column title shown to users (UTF-8)
  EFieldType type;
  EFieldFormat format;
  const char* enumType;                         ///< type name for `TypeManager` when `format` is Enum, else null
  bool hidden;                                  ///< not shown by default
  const void* (*address)(const IData& record);  ///< where the member stands in a record of the type

  template <class T>
  const T& get(const IData& record) const {
    return *static_cast<const T*>(address(record));
  }

  /// The member for writing; only while the record is unpublished.
  template <class T>
  T& edit(IData& record) const {
    return *const_cast<T*>(static_cast<const T*>(address(record)));
  }
};

namespace detail {

template <class Member>
struct CMemberOf;
template <class Record, class Value>
struct CMemberOf<Value Record::*> {
  using RecordType = Record;
  using ValueType = Value;
};

template <auto Member>
const void* memberAddress(const IData& record) {
  using RecordType = typename CMemberOf<decltype(Member)>::RecordType;
  return &(static_cast<const RecordType&>(record).*Member);
}

}  // namespace detail

/// The fields of one record type, in the order in which they are shown by default.
class HOST_API CStructDes {
 public:
  /// `name` is the type's name in SQL and in book files. `fields` must live as long as the process.
  CStructDes(int typeId, const char* name, const CFieldDes* fields, std::size_t count);
  ~CStructDes();

  int typeId() const { return m_typeId; }
  const char* name() const { return m_name; }
  const CFieldDes* begin() const { return m_fields; }
  const CFieldDes* end() const { return m_fields + m_count; }
  std::size_t size() const { return m_count; }

  /// Null when the type has no such field.
  const CFieldDes* fieldByNumber(int number) const;
  const CFieldDes* fieldByName(std::string_view name) const;
  /// By type id × 100 + field number.
  const CFieldDes* fieldByFileId(int fileId) const;
  int fileId(const CFieldDes& field) const { return m_typeId * 100 + field.number; }

 private:
  int m_typeId;
  const char* m_name;
  const CFieldDes* m_fields;
  std::size_t m_count;
};

/// The field as users see it (UTF-8): dates yyyy-MM-dd, amounts "1,234.50", codes by their item name, an account by its
/// id.
HOST_API std::string fieldText(const CFieldDes& field, const IData& record);

/// Whether two records of one type hold the same values in every field. Versions do not count; accounts are compared by
/// key.
HOST_API bool sameFields(const IData& a, const IData& b);

/// Hash over every field of the record; equal records have equal fingerprints.
HOST_API std::uint64_t fingerprint(const IData& record);

}  // namespace rdservice
