#include "rdservice/CStkUnClosedCompacts.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CStkUnClosedCompacts;
using F = EFieldFormat;
constexpr auto HIDDEN = EFieldShown::Hidden;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(22, "name", "证券名称", F::Plain),
    enumRow<&R::compactType>(4, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    enumRow<&R::source>(5, "source", "头寸来源", ENUM_BRUSH_SOURCE),
    fieldRow<&R::financingVolume>(6, "financing_volume", "融资未还数量", F::Volume),
    fieldRow<&R::lendingVolume>(7, "lending_volume", "融券未还数量", F::Volume),
    fieldRow<&R::compactAmount>(8, "compact_amount", "合约金额", F::Amount),
    fieldRow<&R::unpaidAmount>(9, "unpaid_amount", "未还金额", F::Amount),
    fieldRow<&R::repaidAmount>(10, "repaid_amount", "已还金额", F::Amount),
    fieldRow<&R::interestAmount>(11, "interest_amount", "未还利息", F::Amount),
    fieldRow<&R::feeAmount>(12, "fee_amount", "未还费用", F::Amount),
    fieldRow<&R::penaltyAmount>(13, "penalty_amount", "未还罚息", F::Amount),
    fieldRow<&R::fieldA>(14, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::fieldB>(15, "open_date", "开仓日期", F::Date),
    fieldRow<&R::expiryDate>(16, "expiry_date", "到期日期", F::Date),
    enumRow<&R::renewalFlag>(17, "renewal_flag", "展期状态", ENUM_RENEWAL_FLAG),
    fieldRow<&R::repayPriority>(18, "repay_priority", "柜台优先级", F::Plain),
    fieldRow<&R::equityCompensation>(19, "equity_compensation", "权益补偿", F::Amount),
    fieldRow<&R::positionString>(20, "position_string", "定位串", F::Plain, HIDDEN),
    fieldRow<&R::modifyTag>(21, "modify_tag", "修改标记", F::Plain, HIDDEN),
    fieldRow<&R::renewalTimes>(23, "renewal_times", "展期次数", F::Plain, HIDDEN),
};

}  // namespace

CStkUnClosedCompacts::CStkUnClosedCompacts() = default;
CStkUnClosedCompacts::~CStkUnClosedCompacts() = default;
CStkUnClosedCompacts::CStkUnClosedCompacts(const CStkUnClosedCompacts&) = default;
CStkUnClosedCompacts& CStkUnClosedCompacts::operator=(const CStkUnClosedCompacts&) = default;

int CStkUnClosedCompacts::getBaseId() const { return RecordStkUnClosedCompacts; }
IDataPtr CStkUnClosedCompacts::copy() const { return boost::make_shared<CStkUnClosedCompacts>(*this); }
const CStructDes& CStkUnClosedCompacts::getStructDes() const { return structDes(); }

const CStructDes& CStkUnClosedCompacts::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStkUnClosedCompacts, "unclosed_compacts", FIELDS);
  return s_des;
}

std::string CStkUnClosedCompacts::getKey() const {
  return genKey(accountInfo, exchangeId.str(), code.str(), fieldB, fieldA);
}

std::string CStkUnClosedCompacts::genKey(const CAccountInfoPtr& account, std::string_view exchangeId,
                                         std::string_view code, std::int32_t fieldB, std::string_view fieldA) {
  return joinKey(account, exchangeId, code, fieldB, fieldA);
}

}  // namespace rdservice
