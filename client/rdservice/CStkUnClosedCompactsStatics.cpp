#include "rdservice/CStkUnClosedCompactsStatics.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CStkUnClosedCompactsStatics;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::exchangeId>(1, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(2, "code", "证券代码", F::Plain),
    enumRow<&R::compactType>(3, "compact_type", "合约类型", ENUM_COMPACT_TYPE),
    enumRow<&R::source>(4, "source", "头寸来源", ENUM_BRUSH_SOURCE),
    fieldRow<&R::financingVolume>(5, "financing_volume", "融资未还数量", F::Volume),
    fieldRow<&R::lendingVolume>(6, "lending_volume", "融券未还数量", F::Volume),
    fieldRow<&R::compactAmount>(7, "compact_amount", "合约金额", F::Amount),
    fieldRow<&R::unpaidAmount>(8, "unpaid_amount", "未还金额", F::Amount),
    fieldRow<&R::repaidAmount>(9, "repaid_amount", "已还金额", F::Amount),
    fieldRow<&R::interestAmount>(10, "interest_amount", "未还利息", F::Amount),
    fieldRow<&R::feeAmount>(11, "fee_amount", "未还费用", F::Amount),
    fieldRow<&R::penaltyAmount>(12, "penalty_amount", "未还罚息", F::Amount),
    fieldRow<&R::accountInfo>(13, "account", "资金账号", F::Plain),
};

}  // namespace

CStkUnClosedCompactsStatics::CStkUnClosedCompactsStatics() = default;
CStkUnClosedCompactsStatics::~CStkUnClosedCompactsStatics() = default;
CStkUnClosedCompactsStatics::CStkUnClosedCompactsStatics(const CStkUnClosedCompactsStatics&) = default;
CStkUnClosedCompactsStatics& CStkUnClosedCompactsStatics::operator=(const CStkUnClosedCompactsStatics&) = default;

int CStkUnClosedCompactsStatics::getBaseId() const { return RecordStkUnClosedCompactsStatics; }
IDataPtr CStkUnClosedCompactsStatics::copy() const { return boost::make_shared<CStkUnClosedCompactsStatics>(*this); }
const CStructDes& CStkUnClosedCompactsStatics::getStructDes() const { return structDes(); }

const CStructDes& CStkUnClosedCompactsStatics::structDes() {
  static const CStructDes s_des = makeStructDes(RecordStkUnClosedCompactsStatics, "unclosed_compacts_statics", FIELDS);
  return s_des;
}

std::string CStkUnClosedCompactsStatics::getKey() const {
  return genKey(exchangeId.str(), code.str(), compactType, source, accountInfo);
}

std::string CStkUnClosedCompactsStatics::genKey(std::string_view exchangeId, std::string_view code, char compactType,
                                                char source, const CAccountInfoPtr& account) {
  return joinKey(exchangeId, code, compactType, source, account);
}

}  // namespace rdservice
