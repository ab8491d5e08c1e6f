#include "rdservice/CStkClosedCompacts.h"

#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CStkClosedCompacts;
using F = EFieldFormat;
constexpr auto HIDDEN = EFieldShown::Hidden;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(22, "name", "证券名称", F::Plain),
    enumRow<&R::compactType>(4, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    enumRow<&R::source>(5, "source", "头寸来源", ENUM_BRUSH_SOURCE),
    fieldRow<&R::volume>(6, "volume", "合约数量", F::Volume),
    fieldRow<&R::compactAmount>(7, "compact_amount", "合约金额", F::Amount),
    fieldRow<&R::repaidAmount>(8, "repaid_amount", "已还金额", F::Amount),
    fieldRow<&R::interestAmount>(9, "interest_amount", "已还利息", F::Amount),
    fieldRow<&R::feeAmount>(10, "fee_amount", "已还费用", F::Amount),
    fieldRow<&R::fieldA>(11, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::fieldB>(12, "open_date", "开仓日期", F::Date),
    fieldRow<&R::closeDate>(13, "close_date", "了结日期", F::Date),
    fieldRow<&R::repayPriority>(15, "repay_priority", "柜台优先级", F::Plain),
    fieldRow<&R::positionString>(14, "position_string", "定位串", F::Plain, HIDDEN),
};

}  // namespace

CStkClosedCompacts::CStkClosedCompacts() = default;
CStkClosedCompacts::~CStkClosedCompacts() = default;
CStkClosedCompacts::CStkClosedCompacts(const CStkClosedCompacts&) = default;
CStkClosedCompacts& CStkClosedCompacts::operator=(const CStkClosedCompacts&) = default;

int CStkClosedCompacts::getBaseId() const { return RecordStkClosedCompacts; }
IDataPtr CStkClosedCompacts::copy() const { return boost::make_shared<CStkClosedCompacts>(*this); }
const CStructDes& CStkClosedCompacts::getStructDes() const { return structDes(); }

const CStructDes& CStkClosedCompacts::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStkClosedCompacts, "closed_compacts", FIELDS);
  return s_des;
}

std::string CStkClosedCompacts::getKey() const {
  return CStkUnClosedCompacts::genKey(accountInfo, exchangeId.str(), code.str(), fieldB, fieldA);
}

}  // namespace rdservice
