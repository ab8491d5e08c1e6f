#include "rdservice/CInstrumentInfo.h"

#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CInstrumentInfo;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::exchangeId>(1, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(2, "code", "证券代码", F::Plain),
    fieldRow<&R::name>(3, "name", "证券名称", F::Plain),
    fieldRow<&R::pinyin>(4, "pinyin", "拼音简称", F::Plain),
    fieldRow<&R::priceTick>(5, "price_tick", "最小价差", F::Plain),
};

}  // namespace

CInstrumentInfo::CInstrumentInfo() = default;
CInstrumentInfo::~CInstrumentInfo() = default;
CInstrumentInfo::CInstrumentInfo(const CInstrumentInfo&) = default;
CInstrumentInfo& CInstrumentInfo::operator=(const CInstrumentInfo&) = default;

int CInstrumentInfo::getBaseId() const { return RecordInstrumentInfo; }
IDataPtr CInstrumentInfo::copy() const { return boost::make_shared<CInstrumentInfo>(*this); }
const CStructDes& CInstrumentInfo::getStructDes() const { return structDes(); }

const CStructDes& CInstrumentInfo::structDes() {
  static const CStructDes s_des = makeStructDes(RecordInstrumentInfo, "instruments", FIELDS);
  return s_des;
}

std::string CInstrumentInfo::getKey() const { return makeStockKey(exchangeId.str(), code.str()); }

}  // namespace rdservice
