#include "rdservice/CStkOrder.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CStkOrder;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::orderId>(2, "order_id", "委托编号", F::Plain),
    fieldRow<&R::exchangeId>(3, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(4, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(5, "name", "证券名称", F::Plain),
    enumRow<&R::operationType>(6, "operation", "交易类型", ENUM_OPERATION_TYPE),
    fieldRow<&R::volume>(7, "volume", "委托数量", F::Volume),
    fieldRow<&R::price>(8, "price", "委托价格", F::Plain),
    enumRow<&R::state>(9, "state", "委托状态", ENUM_ORDER_STATE),
    fieldRow<&R::filledVolume>(10, "filled_volume", "成交数量", F::Volume),
    fieldRow<&R::filledAmount>(11, "filled_amount", "成交金额", F::Amount),
    fieldRow<&R::reason>(12, "reason", "废单原因", F::Plain),
    fieldRow<&R::orderDate>(13, "order_date", "委托日期", F::Date),
    fieldRow<&R::orderTime>(14, "order_time", "委托时间", F::Plain),
    fieldRow<&R::batchNo>(15, "batch_no", "批次号", F::Plain),
    fieldRow<&R::remark>(16, "remark", "备注", F::Plain),
};

}  // namespace

CStkOrder::CStkOrder() = default;
CStkOrder::~CStkOrder() = default;
CStkOrder::CStkOrder(const CStkOrder&) = default;
CStkOrder& CStkOrder::operator=(const CStkOrder&) = default;

int CStkOrder::getBaseId() const { return RecordStkOrder; }
IDataPtr CStkOrder::copy() const { return boost::make_shared<CStkOrder>(*this); }
const CStructDes& CStkOrder::getStructDes() const { return structDes(); }

const CStructDes& CStkOrder::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStkOrder, "orders", FIELDS);
  return s_des;
}

std::string CStkOrder::getKey() const { return joinKey(accountInfo, orderDate, orderId); }

}  // namespace rdservice
