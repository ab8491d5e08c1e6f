#pragma once

#include "rdservice/CAccountData.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

#include <string>
#include <string_view>

namespace rdservice {

/// What an account holds of a security in one direction. The counter supplies it at log-in and by push.
class HOST_API CPositionStatics : public IData {
 public:
  CPositionStatics();
  ~CPositionStatics() override;
  CPositionStatics(const CPositionStatics&);
  CPositionStatics& operator=(const CPositionStatics&);

  /// The position key, see `genKey`.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  /// Account key, exchange, code, direction and hedge flag, joined by "____".
  static std::string genKey(const CAccountInfoPtr& account, std::string_view exchangeId, std::string_view code,
                            char direction, char hedgeFlag);

  CAccountInfoPtr accountInfo;
  CInternedText exchangeId;
  CInternedText code;
  CInternedText name;                ///< security name
  char direction = '0';              ///< EKVEntrustDirection
  char hedgeFlag = '1';              ///< EKVHedgeFlag
  std::int64_t currentVolume = 0;    ///< shares held
  std::int64_t availableVolume = 0;  ///< shares of them that no order holds back
  std::string shareholderId;         ///< the holder's number at the exchange
  double costPrice = 0;              ///< yuan a share
};

using CPositionStaticsPtr = boost::shared_ptr<CPositionStatics>;

/// Look-ups of positions in the data centre. Any thread.
class HOST_API CPositionStaticsHelper {
 public:
  /// What the account's store holds; null when it holds none, and for a null account. `positionKind`: only
  /// PositionKindHeld is kept, others find nothing. `shareholderId`: empty for any. `reserved`: '0', without a meaning
  /// to this client.
  static CPositionStaticsPtr getPosition(const CAccountDataPtr& account, std::string_view exchangeId,
                                         std::string_view code, char direction, char hedgeFlag, int positionKind,
                                         const std::string& shareholderId, char reserved);
};

}  // namespace rdservice
