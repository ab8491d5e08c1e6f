#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

namespace rdservice {

/// A settled compact. The counter supplies it by query and by push.
class HOST_API CStkClosedCompacts : public IData {
 public:
  CStkClosedCompacts();
  ~CStkClosedCompacts() override;
  CStkClosedCompacts(const CStkClosedCompacts&);
  CStkClosedCompacts& operator=(const CStkClosedCompacts&);

  /// Built as the key of an unclosed compact.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  CInternedText exchangeId;
  CInternedText code;
  CInternedText name;              ///< security name
  char compactType = '0';          ///< EKVCompactType
  char source = '0';               ///< EKVCompactBrushSource
  std::string fieldA;              ///< compact number
  std::int32_t fieldB = 0;         ///< open date, Julian day number
  std::int32_t closeDate = 0;      ///< Julian day number
  std::int32_t repayPriority = 0;  ///< 0 for none
  std::int64_t volume = 0;         ///< shares of the compact
  double compactAmount = 0;        ///< yuan, at opening
  double repaidAmount = 0;         ///< yuan
  double interestAmount = 0;       ///< yuan of interest paid
  double feeAmount = 0;            ///< yuan of fees paid
  std::string positionString;      ///< the counter's position of this compact in a query's result
};

using CStkClosedCompactsPtr = boost::shared_ptr<CStkClosedCompacts>;

}  // namespace rdservice
