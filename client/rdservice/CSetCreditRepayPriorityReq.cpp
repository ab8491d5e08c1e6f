#include "rdservice/CSetCreditRepayPriorityReq.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CSetCreditRepayPriorityReq;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::openDates>(2, "compact_nos", "合约编号", F::Plain),
    fieldRow<&R::orderNumbers>(3, "open_dates", "开仓日期", F::Plain),
    fieldRow<&R::priorities>(4, "repay_priorities", "偿还优先级", F::Plain),
};

}  // namespace

CSetCreditRepayPriorityReq::CSetCreditRepayPriorityReq() = default;
CSetCreditRepayPriorityReq::~CSetCreditRepayPriorityReq() = default;
CSetCreditRepayPriorityReq::CSetCreditRepayPriorityReq(const CSetCreditRepayPriorityReq&) = default;
CSetCreditRepayPriorityReq& CSetCreditRepayPriorityReq::operator=(const CSetCreditRepayPriorityReq&) = default;

int CSetCreditRepayPriorityReq::getBaseId() const { return RequestSetCreditRepayPriority; }
IDataPtr CSetCreditRepayPriorityReq::copy() const { return boost::make_shared<CSetCreditRepayPriorityReq>(*this); }
const CStructDes& CSetCreditRepayPriorityReq::getStructDes() const { return structDes(); }

const CStructDes& CSetCreditRepayPriorityReq::structDes() {
  static const CStructDes s_des = makeStructDes(RequestSetCreditRepayPriority, "set_repay_priorities", FIELDS);
  return s_des;
}

std::string CSetCreditRepayPriorityReq::getKey() const {
  return joinKey(accountInfo, openDates, orderNumbers, priorities);
}

}  // namespace rdservice
