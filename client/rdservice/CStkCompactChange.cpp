#include "rdservice/CStkCompactChange.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CStkCompactChange;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    enumRow<&R::compactType>(4, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    fieldRow<&R::compactNo>(5, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::openDate>(6, "open_date", "开仓日期", F::Date),
    fieldRow<&R::changeDate>(7, "change_date", "变动日期", F::Date),
    fieldRow<&R::changeKind>(8, "change_kind", "变动类型", F::Plain),
    fieldRow<&R::changeVolume>(9, "change_volume", "变动数量", F::Volume),
    fieldRow<&R::changeAmount>(10, "change_amount", "变动金额", F::Amount),
    fieldRow<&R::remainingVolume>(11, "remaining_volume", "剩余数量", F::Volume),
    fieldRow<&R::remainingAmount>(12, "remaining_amount", "剩余金额", F::Amount),
    fieldRow<&R::serialNo>(13, "serial_no", "流水号", F::Plain),
};

}  // namespace

CStkCompactChange::CStkCompactChange() = default;
CStkCompactChange::~CStkCompactChange() = default;
CStkCompactChange::CStkCompactChange(const CStkCompactChange&) = default;
CStkCompactChange& CStkCompactChange::operator=(const CStkCompactChange&) = default;

int CStkCompactChange::getBaseId() const { return RecordStkCompactChange; }
IDataPtr CStkCompactChange::copy() const { return boost::make_shared<CStkCompactChange>(*this); }
const CStructDes& CStkCompactChange::getStructDes() const { return structDes(); }

const CStructDes& CStkCompactChange::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStkCompactChange, "change_details", FIELDS);
  return s_des;
}

std::string CStkCompactChange::getKey() const { return joinKey(accountInfo, changeDate, serialNo); }

}  // namespace rdservice
