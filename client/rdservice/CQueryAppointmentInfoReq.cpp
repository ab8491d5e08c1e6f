#include "rdservice/CQueryAppointmentInfoReq.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CQueryAppointmentInfoReq;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::startDate>(4, "start_date", "起始日期", F::Plain),
    fieldRow<&R::endDate>(5, "end_date", "终止日期", F::Plain),
};

}  // namespace

CQueryAppointmentInfoReq::CQueryAppointmentInfoReq() = default;
CQueryAppointmentInfoReq::~CQueryAppointmentInfoReq() = default;
CQueryAppointmentInfoReq::CQueryAppointmentInfoReq(const CQueryAppointmentInfoReq&) = default;
CQueryAppointmentInfoReq& CQueryAppointmentInfoReq::operator=(const CQueryAppointmentInfoReq&) = default;

int CQueryAppointmentInfoReq::getBaseId() const { return RequestQueryAppointmentInfo; }
IDataPtr CQueryAppointmentInfoReq::copy() const { return boost::make_shared<CQueryAppointmentInfoReq>(*this); }
const CStructDes& CQueryAppointmentInfoReq::getStructDes() const { return structDes(); }

const CStructDes& CQueryAppointmentInfoReq::structDes() {
  static const CStructDes s_des = makeStructDes(RequestQueryAppointmentInfo, "query_appointments", FIELDS);
  return s_des;
}

std::string CQueryAppointmentInfoReq::getKey() const {
  return joinKey(accountInfo, exchangeId, code, startDate, endDate);
}

}  // namespace rdservice
