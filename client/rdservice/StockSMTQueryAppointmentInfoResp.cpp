#include "rdservice/StockSMTQueryAppointmentInfoResp.h"

#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = StockSMTQueryAppointmentInfoResp;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(4, "name", "证券名称", F::Plain),
    enumRow<&R::compactType>(5, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    enumRow<&R::source>(6, "source", "头寸来源", ENUM_BRUSH_SOURCE),
    fieldRow<&R::fieldA>(7, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::fieldB>(8, "open_date", "开仓日期", F::Date),
    fieldRow<&R::expiryDate>(9, "expiry_date", "到期日期", F::Date),
    fieldRow<&R::volume>(10, "volume", "未还数量", F::Volume),
    fieldRow<&R::compactAmount>(11, "compact_amount", "合约金额", F::Amount),
    fieldRow<&R::unpaidAmount>(12, "unpaid_amount", "未还金额", F::Amount),
    fieldRow<&R::interestAmount>(13, "interest_amount", "未还利息", F::Amount),
    fieldRow<&R::maxRenewalDays>(14, "max_renewal_days", "可展期天数", F::Plain),
    fieldRow<&R::renewedDays>(15, "renewed_days", "已展期天数", F::Plain),
    fieldRow<&R::renewalTimes>(16, "renewal_times", "已展期次数", F::Plain),
};

}  // namespace

StockSMTQueryAppointmentInfoResp::StockSMTQueryAppointmentInfoResp() = default;
StockSMTQueryAppointmentInfoResp::~StockSMTQueryAppointmentInfoResp() = default;
StockSMTQueryAppointmentInfoResp::StockSMTQueryAppointmentInfoResp(const StockSMTQueryAppointmentInfoResp&) = default;
StockSMTQueryAppointmentInfoResp& StockSMTQueryAppointmentInfoResp::operator=(const StockSMTQueryAppointmentInfoResp&) =
    default;

int StockSMTQueryAppointmentInfoResp::getBaseId() const { return RecordStockSMTQueryAppointmentInfoResp; }
IDataPtr StockSMTQueryAppointmentInfoResp::copy() const {
  return boost::make_shared<StockSMTQueryAppointmentInfoResp>(*this);
}
const CStructDes& StockSMTQueryAppointmentInfoResp::getStructDes() const { return structDes(); }

const CStructDes& StockSMTQueryAppointmentInfoResp::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStockSMTQueryAppointmentInfoResp, "appointments", FIELDS);
  return s_des;
}

std::string StockSMTQueryAppointmentInfoResp::getKey() const {
  return CStkUnClosedCompacts::genKey(accountInfo, exchangeId.str(), code.str(), fieldB, fieldA);
}

}  // namespace rdservice
