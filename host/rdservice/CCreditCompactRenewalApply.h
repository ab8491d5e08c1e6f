#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

namespace rdservice {

/// Asks the counter to extend one compact. Answered by an error, which a CErrorResp may accompany, or by success; a
/// success whose reply has extra data is one that the counter has not carried out.
class HOST_API CCreditCompactRenewalApply : public IData {
 public:
  CCreditCompactRenewalApply();
  ~CCreditCompactRenewalApply() override;
  CCreditCompactRenewalApply(const CCreditCompactRenewalApply&);
  CCreditCompactRenewalApply& operator=(const CCreditCompactRenewalApply&);

  /// The key of the compact, see CStkUnClosedCompacts::genKey.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  /// Values of `flag`.
  enum EExpiry : std::int32_t {
    ExpiryGiven = 0,  ///< `newExpiryDate` is what the user wants
    ExpiryAdded = 1,  ///< the counter adds `renewalDays` to the expiry date that it knows
  };

  CAccountInfoPtr accountInfo;
  std::string compactNumber;  ///< field A of the compact
  std::int32_t openDate = 0;  ///< field B of the compact
  std::string reserved;       ///< empty
  std::int32_t renewalDays = 0;
  std::string exchangeId;
  std::string code;
  std::int32_t expiryDate = 0;     ///< as the client knows it, Julian day number; 0 when not told
  std::int32_t newExpiryDate = 0;  ///< Julian day number; with ExpiryGiven only
  std::int32_t flag = ExpiryGiven;
};

using CCreditCompactRenewalApplyPtr = boost::shared_ptr<CCreditCompactRenewalApply>;

}  // namespace rdservice
