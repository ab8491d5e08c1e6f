#pragma once

#include "rdservice/IData.h"

#include <string>

namespace rdservice {

/// Asks the counter to place one order. Answered by its CStkOrder as it was entrusted or refused; what becomes of it
/// later is pushed. An error means that there is no order.
class HOST_API CPlaceOrderReq : public IData {
 public:
  CPlaceOrderReq();
  ~CPlaceOrderReq() override;
  CPlaceOrderReq(const CPlaceOrderReq&);
  CPlaceOrderReq& operator=(const CPlaceOrderReq&);
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::string accountKey;
  std::string exchangeId;
  std::string code;
  std::int32_t operationType = 0;  ///< EOperationType
  std::int64_t volume = 0;         ///< shares
  double price = 0;                ///< yuan; 0 for the last price
  std::string shareholderId;       ///< may be empty
  std::int32_t batchNo = 0;        ///< the user's number of a batch; 0 for none
  std::string remark;              ///< may be empty
};

using CPlaceOrderReqPtr = boost::shared_ptr<CPlaceOrderReq>;

/// Asks the counter for the quotes of instruments, and to push their changes from now on. Answered by CPriceData
/// records of those that the counter quotes.
class HOST_API CSubscribeQuotesReq : public IData {
 public:
  CSubscribeQuotesReq();
  ~CSubscribeQuotesReq() override;
  CSubscribeQuotesReq(const CSubscribeQuotesReq&);
  CSubscribeQuotesReq& operator=(const CSubscribeQuotesReq&);
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::string stockKeys;  ///< each followed by "|"; it replaces the former list
};

using CSubscribeQuotesReqPtr = boost::shared_ptr<CSubscribeQuotesReq>;

}  // namespace rdservice
