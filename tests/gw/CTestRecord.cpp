#include "CTestRecord.h"

using rdservice::CFieldDes;
using rdservice::EFieldFormat;
using rdservice::EFieldType;
using rdservice::detail::memberAddress;

const rdservice::CStructDes& CTestRecord::structDes() {
  static constexpr CFieldDes FIELDS[] = {
      {1, "id", "合约编号", EFieldType::Text, EFieldFormat::Plain, nullptr, false, &memberAddress<&CTestRecord::id>},
      {2, "grp", "类别", EFieldType::Char, EFieldFormat::Plain, nullptr, false, &memberAddress<&CTestRecord::group>},
      {5, "name", "证券名称", EFieldType::Interned, EFieldFormat::Plain, nullptr, false,
       &memberAddress<&CTestRecord::name>},
      {7, "volume", "未还数量", EFieldType::Int64, EFieldFormat::Volume, nullptr, false,
       &memberAddress<&CTestRecord::volume>},
      {8, "amount", "未还金额", EFieldType::Double, EFieldFormat::Amount, nullptr, false,
       &memberAddress<&CTestRecord::amount>},
      {9, "date", "到期日期", EFieldType::Int32, EFieldFormat::Date, nullptr, true, &memberAddress<&CTestRecord::date>},
  };
  static const rdservice::CStructDes des(901, "test_record", FIELDS, std::size(FIELDS));
  return des;
}
