#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

namespace rdservice {

/// Asks the counter to set or clear the repay priorities of compacts of one account. The three lists have one entry for
/// each compact, in the same order, and every entry is followed by "|".
///
/// Answered by records in the order of the entries: a CCreditRepayPriorityResp for a priority that was set, a
/// CErrorResp for an entry that the counter refused, nothing for one that was cleared. An error means that nothing
/// changed.
class HOST_API CSetCreditRepayPriorityReq : public IData {
 public:
  CSetCreditRepayPriorityReq();
  ~CSetCreditRepayPriorityReq() override;
  CSetCreditRepayPriorityReq(const CSetCreditRepayPriorityReq&);
  CSetCreditRepayPriorityReq& operator=(const CSetCreditRepayPriorityReq&);

  /// Account key and the three lists, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  std::string openDates;     ///< field A of the compacts
  std::string orderNumbers;  ///< field B of the compacts in decimal
  std::string priorities;    ///< 1 to 999999 in decimal; an empty entry and 0 clear
};

using CSetCreditRepayPriorityReqPtr = boost::shared_ptr<CSetCreditRepayPriorityReq>;

}  // namespace rdservice
