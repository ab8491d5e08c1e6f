#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

#include <string>

namespace rdservice {

/// An order and what became of it. The counter supplies it at log-in and by push. An order that never reached the
/// counter is made by the client, with a number that begins with "L".
class HOST_API CStkOrder : public IData {
 public:
  CStkOrder();
  ~CStkOrder() override;
  CStkOrder(const CStkOrder&);
  CStkOrder& operator=(const CStkOrder&);

  /// Account key, order date, order number, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  std::string orderId;  ///< unique within account and day
  CInternedText exchangeId;
  CInternedText code;
  CInternedText name;              ///< security name
  std::int32_t operationType = 0;  ///< EOperationType
  std::int64_t volume = 0;         ///< shares
  double price = 0;                ///< yuan; 0 for the last price
  char state = '0';                ///< EKVOrderState
  std::int64_t filledVolume = 0;   ///< shares
  double filledAmount = 0;         ///< yuan; 0 where shares are returned
  std::string reason;              ///< why it was refused, for users
  std::int32_t orderDate = 0;      ///< Julian day number
  std::string orderTime;           ///< hh:mm:ss, local time of the counter
  std::int32_t batchNo = 0;        ///< as the request gave it; 0 for none
  std::string remark;              ///< as the request gave it
};

using CStkOrderPtr = boost::shared_ptr<CStkOrder>;

}  // namespace rdservice
