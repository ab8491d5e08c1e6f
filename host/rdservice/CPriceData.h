#pragma once

#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

#include <string>
#include <string_view>

namespace rdservice {

/// The quote of a security. The counter supplies it when the client subscribes and by push; the data centre keeps it in
/// `CDataCenter::getMarketData`.
class HOST_API CPriceData : public IData {
 public:
  CPriceData();
  ~CPriceData() override;
  CPriceData(const CPriceData&);
  CPriceData& operator=(const CPriceData&);

  /// The stock key: exchange and code without separator.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CInternedText exchangeId;
  CInternedText code;
  double lastPrice = 0;   ///< yuan
  double closePrice = 0;  ///< yuan, of the trading day before; 0 when unknown
};

using CPriceDataPtr = boost::shared_ptr<CPriceData>;

/// Look-ups of prices in the data centre. Any thread.
class HOST_API CPriceDataHelper {
 public:
  /// Yuan; 0 when unknown. `priceSource`: EPriceSource; another one gives 0.
  static double getLastPrice(int priceSource, std::string_view exchangeId, std::string_view code);
};

}  // namespace rdservice
