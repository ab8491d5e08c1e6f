#include "rdservice/CQueryAppointmentInfoResp.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CQueryAppointmentInfoResp;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::resultFlag>(1, "result_flag", "结果标志", F::Plain),
};

}  // namespace

CQueryAppointmentInfoResp::CQueryAppointmentInfoResp() = default;
CQueryAppointmentInfoResp::~CQueryAppointmentInfoResp() = default;
CQueryAppointmentInfoResp::CQueryAppointmentInfoResp(const CQueryAppointmentInfoResp&) = default;
CQueryAppointmentInfoResp& CQueryAppointmentInfoResp::operator=(const CQueryAppointmentInfoResp&) = default;

int CQueryAppointmentInfoResp::getBaseId() const { return RecordQueryAppointmentInfoResp; }
IDataPtr CQueryAppointmentInfoResp::copy() const {
  auto copied = boost::make_shared<CQueryAppointmentInfoResp>(*this);
  for (IDataPtr& record : copied->records)
    if (record) record = record->copy();
  return copied;
}
const CStructDes& CQueryAppointmentInfoResp::getStructDes() const { return structDes(); }

const CStructDes& CQueryAppointmentInfoResp::structDes() {
  static const CStructDes s_des = makeStructDes(RecordQueryAppointmentInfoResp, "appointment_answers", FIELDS);
  return s_des;
}

std::string CQueryAppointmentInfoResp::getKey() const { return joinKey(resultFlag); }

}  // namespace rdservice
