#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

#include <string_view>

namespace rdservice {

/// An open compact: one financing or securities-lending debt of a credit account. The counter supplies it by query
/// and by push.
class HOST_API CStkUnClosedCompacts : public IData {
 public:
  CStkUnClosedCompacts();
  ~CStkUnClosedCompacts() override;
  CStkUnClosedCompacts(const CStkUnClosedCompacts&);
  CStkUnClosedCompacts& operator=(const CStkUnClosedCompacts&);

  /// The compact key, see `genKey`.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  /// The compact key: account key, exchange, code, field B in decimal and field A, joined by "____". Every look-up
  /// builds its key here. A null account gives an empty first part.
  static std::string genKey(const CAccountInfoPtr& account, std::string_view exchangeId, std::string_view code,
                            std::int32_t fieldB, std::string_view fieldA);

  CAccountInfoPtr accountInfo;
  CInternedText exchangeId;
  CInternedText code;
  CInternedText name;                ///< security name
  char compactType = '0';            ///< EKVCompactType
  char source = '0';                 ///< EKVCompactBrushSource
  char renewalFlag = '0';            ///< '1' after a successful renewal
  std::string fieldA;                ///< compact number
  std::int32_t fieldB = 0;           ///< open date, Julian day number
  std::int32_t expiryDate = 0;       ///< Julian day number
  std::int32_t repayPriority = 0;    ///< 1 to 999999, 0 for none
  std::int32_t renewalTimes = 0;     ///< successful renewals
  std::int64_t financingVolume = 0;  ///< shares still financed
  std::int64_t lendingVolume = 0;    ///< borrowed shares still to be returned
  double compactAmount = 0;          ///< yuan, at opening
  double unpaidAmount = 0;           ///< yuan of principal still owed
  double repaidAmount = 0;           ///< yuan
  double interestAmount = 0;         ///< yuan of interest accrued and unpaid
  double feeAmount = 0;              ///< yuan of fees unpaid
  double penaltyAmount = 0;          ///< yuan of penalty interest unpaid
  double equityCompensation = 0;     ///< yuan owed for dividends and rights
  std::string positionString;        ///< the counter's position of this compact in a query's result
  std::string modifyTag;             ///< two characters; "KV" after the client itself changed the stored compact
};

using CStkUnClosedCompactsPtr = boost::shared_ptr<CStkUnClosedCompacts>;

}  // namespace rdservice
