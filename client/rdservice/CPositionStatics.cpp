#include "rdservice/CPositionStatics.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CPositionStatics;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(4, "name", "证券名称", F::Plain),
    enumRow<&R::direction>(5, "direction", "方向", ENUM_ENTRUST_DIRECTION),
    enumRow<&R::hedgeFlag>(6, "hedge_flag", "投保标志", ENUM_HEDGE_FLAG),
    fieldRow<&R::currentVolume>(7, "current_volume", "当前拥股", F::Volume),
    fieldRow<&R::availableVolume>(8, "available_volume", "可用数量", F::Volume),
    fieldRow<&R::costPrice>(9, "cost_price", "成本价", F::Plain),
    fieldRow<&R::shareholderId>(10, "shareholder", "股东账号", F::Plain),
};

}  // namespace

CPositionStatics::CPositionStatics() = default;
CPositionStatics::~CPositionStatics() = default;
CPositionStatics::CPositionStatics(const CPositionStatics&) = default;
CPositionStatics& CPositionStatics::operator=(const CPositionStatics&) = default;

int CPositionStatics::getBaseId() const { return RecordPositionStatics; }
IDataPtr CPositionStatics::copy() const { return boost::make_shared<CPositionStatics>(*this); }
const CStructDes& CPositionStatics::getStructDes() const { return structDes(); }

const CStructDes& CPositionStatics::structDes() {
  static const CStructDes s_des = makeStructDes(RecordPositionStatics, "positions", FIELDS);
  return s_des;
}

std::string CPositionStatics::getKey() const {
  return genKey(accountInfo, exchangeId.str(), code.str(), direction, hedgeFlag);
}

std::string CPositionStatics::genKey(const CAccountInfoPtr& account, std::string_view exchangeId, std::string_view code,
                                     char direction, char hedgeFlag) {
  return joinKey(account, exchangeId, code, direction, hedgeFlag);
}

CPositionStaticsPtr CPositionStaticsHelper::getPosition(const CAccountDataPtr& account, std::string_view exchangeId,
                                                        std::string_view code, char direction, char hedgeFlag,
                                                        int positionKind, const std::string& shareholderId,
                                                        char /*reserved*/) {
  if (account == nullptr || positionKind != PositionKindHeld) return nullptr;
  const auto key = CPositionStatics::genKey(account->getAccountInfo(), exchangeId, code, direction, hedgeFlag);
  const auto held = boost::dynamic_pointer_cast<CPositionStatics>(account->getData(RecordPositionStatics, key));
  const bool isOther = held != nullptr && !shareholderId.empty() && held->shareholderId != shareholderId;
  return isOther ? nullptr : held;
}

}  // namespace rdservice
