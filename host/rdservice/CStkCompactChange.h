#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

namespace rdservice {

/// One change of a liability: an entry of the counter's change details.
class HOST_API CStkCompactChange : public IData {
 public:
  CStkCompactChange();
  ~CStkCompactChange() override;
  CStkCompactChange(const CStkCompactChange&);
  CStkCompactChange& operator=(const CStkCompactChange&);

  /// Account key, change date, serial number, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  CInternedText exchangeId;
  CInternedText code;
  char compactType = '0';            ///< EKVCompactType
  std::string compactNo;             ///< number of the compact that changed
  std::int32_t openDate = 0;         ///< of that compact, Julian day number
  std::int32_t changeDate = 0;       ///< Julian day number
  CInternedText changeKind;          ///< what happened, in the counter's words
  std::int64_t changeVolume = 0;     ///< shares; negative when the liability falls
  double changeAmount = 0;           ///< yuan; negative when the liability falls
  std::int64_t remainingVolume = 0;  ///< shares owed afterwards
  double remainingAmount = 0;        ///< yuan owed afterwards
  std::string serialNo;              ///< unique within account and day
};

using CStkCompactChangePtr = boost::shared_ptr<CStkCompactChange>;

}  // namespace rdservice
