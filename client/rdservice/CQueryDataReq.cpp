#include "rdservice/CQueryDataReq.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CQueryDataReq;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::dataType>(2, "data_type", "数据类型", F::Plain),
};

}  // namespace

CQueryDataReq::CQueryDataReq() = default;
CQueryDataReq::~CQueryDataReq() = default;
CQueryDataReq::CQueryDataReq(const CQueryDataReq&) = default;
CQueryDataReq& CQueryDataReq::operator=(const CQueryDataReq&) = default;

int CQueryDataReq::getBaseId() const { return RequestQueryData; }
IDataPtr CQueryDataReq::copy() const { return boost::make_shared<CQueryDataReq>(*this); }
const CStructDes& CQueryDataReq::getStructDes() const { return structDes(); }

const CStructDes& CQueryDataReq::structDes() {
  static const CStructDes s_des = makeStructDes(RequestQueryData, "query_data", FIELDS);
  return s_des;
}

std::string CQueryDataReq::getKey() const { return joinKey(accountInfo, dataType); }

}  // namespace rdservice
