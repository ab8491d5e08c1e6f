#include "rdservice/CPriceData.h"

#include "rdservice/TraderCenter.h"
#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CPriceData;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::exchangeId>(1, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(2, "code", "证券代码", F::Plain),
    fieldRow<&R::lastPrice>(3, "last_price", "最新价", F::Plain),
    fieldRow<&R::closePrice>(4, "close_price", "昨收价", F::Plain),
};

}  // namespace

CPriceData::CPriceData() = default;
CPriceData::~CPriceData() = default;
CPriceData::CPriceData(const CPriceData&) = default;
CPriceData& CPriceData::operator=(const CPriceData&) = default;

int CPriceData::getBaseId() const { return RecordPriceData; }
IDataPtr CPriceData::copy() const { return boost::make_shared<CPriceData>(*this); }
const CStructDes& CPriceData::getStructDes() const { return structDes(); }

const CStructDes& CPriceData::structDes() {
  static const CStructDes s_des = makeStructDes(RecordPriceData, "quotes", FIELDS);
  return s_des;
}

std::string CPriceData::getKey() const { return makeStockKey(exchangeId.str(), code.str()); }

double CPriceDataHelper::getLastPrice(int priceSource, std::string_view exchangeId, std::string_view code) {
  TraderCenter* const centre = TraderCenter::instance();
  if (centre == nullptr || priceSource != PriceSourceLast) return 0;
  const auto market = centre->getDataCenter()->getMarketData();
  const auto quote =
      boost::dynamic_pointer_cast<CPriceData>(market->getData(RecordPriceData, makeStockKey(exchangeId, code)));
  return quote == nullptr ? 0 : quote->lastPrice;
}

}  // namespace rdservice
