#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/CStructDes.h"

#include <cstddef>
#include <string>

namespace rdservice {

namespace detail {

template <class Value>
struct CFieldTypeOf;
template <>
struct CFieldTypeOf<CAccountInfoPtr> {
  static constexpr EFieldType VALUE = EFieldType::Account;
};
template <>
struct CFieldTypeOf<std::string> {
  static constexpr EFieldType VALUE = EFieldType::Text;
};
template <>
struct CFieldTypeOf<CInternedText> {
  static constexpr EFieldType VALUE = EFieldType::Interned;
};
template <>
struct CFieldTypeOf<char> {
  static constexpr EFieldType VALUE = EFieldType::Char;
};
template <>
struct CFieldTypeOf<std::int32_t> {
  static constexpr EFieldType VALUE = EFieldType::Int32;
};
template <>
struct CFieldTypeOf<std::int64_t> {
  static constexpr EFieldType VALUE = EFieldType::Int64;
};
template <>
struct CFieldTypeOf<double> {
  static constexpr EFieldType VALUE = EFieldType::Double;
};

}  // namespace detail

enum class EFieldShown : bool { Shown, Hidden };

/// One row of a record's field table; the storage type follows from the member.
template <auto Member>
constexpr CFieldDes fieldRow(int number, const char* name, const char* title, EFieldFormat format,
                             EFieldShown shown = EFieldShown::Shown) {
  using Value = typename detail::CMemberOf<decltype(Member)>::ValueType;
  return {number,
          name,
          title,
          detail::CFieldTypeOf<Value>::VALUE,
          format,
          nullptr,
          shown == EFieldShown::Hidden,
          &detail::memberAddress<Member>};
}

/// A row of a field that holds codes of the enumeration `enumType`, as `TypeManager` names it.
template <auto Member>
constexpr CFieldDes enumRow(int number, const char* name, const char* title, const char* enumType,
                            EFieldShown shown = EFieldShown::Shown) {
  CFieldDes row = fieldRow<Member>(number, name, title, EFieldFormat::Enum, shown);
  row.enumType = enumType;
  return row;
}

template <std::size_t COUNT>
CStructDes makeStructDes(int typeId, const char* name, const CFieldDes (&fields)[COUNT]) {
  return CStructDes(typeId, name, fields, COUNT);
}

// Enumerations that field tables and `TypeManager` name.
constexpr const char* ENUM_COMPACT_TYPE = "rdservice::EKVCompactType";
constexpr const char* ENUM_BRUSH_SOURCE = "rdservice::EKVCompactBrushSource";
constexpr const char* ENUM_RENEWAL_FLAG = "rdservice::EKVRenewalFlag";
constexpr const char* ENUM_BROKER_TYPE = "rdservice::EBrokerType";
constexpr const char* ENUM_LOGIN_STATUS = "rdservice::EBROKER_LOGIN_STATUS";
constexpr const char* ENUM_OPERATION_TYPE = "rdservice::EOperationType";
constexpr const char* ENUM_ENTRUST_DIRECTION = "rdservice::EKVEntrustDirection";
constexpr const char* ENUM_HEDGE_FLAG = "rdservice::EKVHedgeFlag";
constexpr const char* ENUM_ORDER_STATE = "rdservice::EKVOrderState";

}  // namespace rdservice
