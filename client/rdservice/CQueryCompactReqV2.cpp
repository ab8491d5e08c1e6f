#include "rdservice/CQueryCompactReqV2.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CQueryCompactReqV2;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::dataType>(1, "data_type", "数据类型", F::Plain),
    enumRow<&R::compactType>(2, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    fieldRow<&R::positionString>(3, "position_string", "定位串", F::Plain),
    fieldRow<&R::requestCount>(4, "request_count", "请求数量", F::Plain),
    fieldRow<&R::accountKey>(5, "account_key", "账户", F::Plain),
};

}  // namespace

CQueryCompactReqV2::CQueryCompactReqV2() = default;
CQueryCompactReqV2::~CQueryCompactReqV2() = default;
CQueryCompactReqV2::CQueryCompactReqV2(const CQueryCompactReqV2&) = default;
CQueryCompactReqV2& CQueryCompactReqV2::operator=(const CQueryCompactReqV2&) = default;

int CQueryCompactReqV2::getBaseId() const { return RequestQueryCompactV2; }
IDataPtr CQueryCompactReqV2::copy() const { return boost::make_shared<CQueryCompactReqV2>(*this); }
const CStructDes& CQueryCompactReqV2::getStructDes() const { return structDes(); }

const CStructDes& CQueryCompactReqV2::structDes() {
  static const CStructDes s_des = makeStructDes(RequestQueryCompactV2, "query_compacts", FIELDS);
  return s_des;
}

std::string CQueryCompactReqV2::getKey() const {
  return joinKey(accountKey, compactType, positionString, requestCount);
}

}  // namespace rdservice
