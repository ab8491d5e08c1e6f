#include "rdservice/COrderRequests.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using P = CPlaceOrderReq;
using F = EFieldFormat;

constexpr CFieldDes PLACE_FIELDS[] = {
    fieldRow<&P::accountKey>(1, "account_key", "账户", F::Plain),
    fieldRow<&P::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&P::code>(3, "code", "证券代码", F::Plain),
    enumRow<&P::operationType>(4, "operation", "交易类型", ENUM_OPERATION_TYPE),
    fieldRow<&P::volume>(5, "volume", "委托数量", F::Volume),
    fieldRow<&P::price>(6, "price", "委托价格", F::Plain),
    fieldRow<&P::shareholderId>(7, "shareholder", "股东账号", F::Plain),
    fieldRow<&P::batchNo>(8, "batch_no", "批次号", F::Plain),
    fieldRow<&P::remark>(9, "remark", "备注", F::Plain),
};

constexpr CFieldDes QUOTE_FIELDS[] = {
    fieldRow<&CSubscribeQuotesReq::stockKeys>(1, "stock_keys", "证券", F::Plain),
};

}  // namespace

CPlaceOrderReq::CPlaceOrderReq() = default;
CPlaceOrderReq::~CPlaceOrderReq() = default;
CPlaceOrderReq::CPlaceOrderReq(const CPlaceOrderReq&) = default;
CPlaceOrderReq& CPlaceOrderReq::operator=(const CPlaceOrderReq&) = default;
std::string CPlaceOrderReq::getKey() const { return joinKey(accountKey, exchangeId, code, operationType); }
int CPlaceOrderReq::getBaseId() const { return RequestPlaceOrder; }
IDataPtr CPlaceOrderReq::copy() const { return boost::make_shared<CPlaceOrderReq>(*this); }
const CStructDes& CPlaceOrderReq::getStructDes() const { return structDes(); }
const CStructDes& CPlaceOrderReq::structDes() {
  static const CStructDes s_des = makeStructDes(RequestPlaceOrder, "place_order", PLACE_FIELDS);
  return s_des;
}

CSubscribeQuotesReq::CSubscribeQuotesReq() = default;
CSubscribeQuotesReq::~CSubscribeQuotesReq() = default;
CSubscribeQuotesReq::CSubscribeQuotesReq(const CSubscribeQuotesReq&) = default;
CSubscribeQuotesReq& CSubscribeQuotesReq::operator=(const CSubscribeQuotesReq&) = default;
std::string CSubscribeQuotesReq::getKey() const { return stockKeys; }
int CSubscribeQuotesReq::getBaseId() const { return RequestSubscribeQuotes; }
IDataPtr CSubscribeQuotesReq::copy() const { return boost::make_shared<CSubscribeQuotesReq>(*this); }
const CStructDes& CSubscribeQuotesReq::getStructDes() const { return structDes(); }
const CStructDes& CSubscribeQuotesReq::structDes() {
  static const CStructDes s_des = makeStructDes(RequestSubscribeQuotes, "subscribe_quotes", QUOTE_FIELDS);
  return s_des;
}

}  // namespace rdservice
