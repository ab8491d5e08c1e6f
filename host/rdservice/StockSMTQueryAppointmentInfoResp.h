#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

namespace rdservice {

/// A compact that is open for renewal by appointment.
class HOST_API StockSMTQueryAppointmentInfoResp : public IData {
 public:
  StockSMTQueryAppointmentInfoResp();
  ~StockSMTQueryAppointmentInfoResp() override;
  StockSMTQueryAppointmentInfoResp(const StockSMTQueryAppointmentInfoResp&);
  StockSMTQueryAppointmentInfoResp& operator=(const StockSMTQueryAppointmentInfoResp&);

  /// The key of the compact, see CStkUnClosedCompacts::genKey.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;  ///< may be null in a reply, which is then of the request's account
  std::string accountId;        ///< the same account's id; may be empty
  CInternedText exchangeId;
  CInternedText code;
  CInternedText name;               ///< security name
  char compactType = '0';           ///< EKVCompactType
  char source = '0';                ///< EKVCompactBrushSource
  std::string fieldA;               ///< compact number
  std::int32_t fieldB = 0;          ///< open date, Julian day number
  std::int32_t expiryDate = 0;      ///< Julian day number
  std::int64_t volume = 0;          ///< shares still financed or owed
  double compactAmount = 0;         ///< yuan, at opening
  double unpaidAmount = 0;          ///< yuan of principal still owed
  double interestAmount = 0;        ///< yuan of interest accrued and unpaid
  std::int32_t maxRenewalDays = 0;  ///< days that the broker offers; 0 when not told
  std::int32_t renewedDays = 0;     ///< by all renewals so far
  std::int32_t renewalTimes = 0;    ///< renewals so far
};

using StockSMTQueryAppointmentInfoRespPtr = boost::shared_ptr<StockSMTQueryAppointmentInfoResp>;

}  // namespace rdservice
