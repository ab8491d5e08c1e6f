#include "rdservice/CCreditRepayPriorityResp.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CCreditRepayPriorityResp;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::fieldA>(1, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::fieldB>(2, "open_date", "开仓日期", F::Plain),
    fieldRow<&R::repayPriority>(3, "repay_priority", "柜台优先级", F::Plain),
};

}  // namespace

CCreditRepayPriorityResp::CCreditRepayPriorityResp() = default;
CCreditRepayPriorityResp::~CCreditRepayPriorityResp() = default;
CCreditRepayPriorityResp::CCreditRepayPriorityResp(const CCreditRepayPriorityResp&) = default;
CCreditRepayPriorityResp& CCreditRepayPriorityResp::operator=(const CCreditRepayPriorityResp&) = default;

int CCreditRepayPriorityResp::getBaseId() const { return RecordCreditRepayPriorityResp; }
IDataPtr CCreditRepayPriorityResp::copy() const { return boost::make_shared<CCreditRepayPriorityResp>(*this); }
const CStructDes& CCreditRepayPriorityResp::getStructDes() const { return structDes(); }

const CStructDes& CCreditRepayPriorityResp::structDes() {
  static const CStructDes s_des = makeStructDes(RecordCreditRepayPriorityResp, "repay_priority_answers", FIELDS);
  return s_des;
}

std::string CCreditRepayPriorityResp::getKey() const { return joinKey(fieldB, fieldA); }

}  // namespace rdservice
