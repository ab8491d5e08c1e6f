#include "rdservice/CErrorResp.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CErrorResp;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::errorCode>(1, "error_code", "错误代码", F::Plain),
    fieldRow<&R::errorText>(2, "error_text", "错误信息", F::Plain),
};

}  // namespace

CErrorResp::CErrorResp() = default;
CErrorResp::~CErrorResp() = default;
CErrorResp::CErrorResp(const CErrorResp&) = default;
CErrorResp& CErrorResp::operator=(const CErrorResp&) = default;

int CErrorResp::getBaseId() const { return RecordErrorResp; }
IDataPtr CErrorResp::copy() const { return boost::make_shared<CErrorResp>(*this); }
const CStructDes& CErrorResp::getStructDes() const { return structDes(); }

const CStructDes& CErrorResp::structDes() {
  static const CStructDes s_des = makeStructDes(RecordErrorResp, "errors", FIELDS);
  return s_des;
}

std::string CErrorResp::getKey() const { return joinKey(errorCode, errorText); }

}  // namespace rdservice
