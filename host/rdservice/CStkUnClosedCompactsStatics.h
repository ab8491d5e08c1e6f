#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/IData.h"

#include <string_view>

namespace rdservice {

/// Liabilities of one account in one security, by compact type and source: sums over its unclosed compacts.
class HOST_API CStkUnClosedCompactsStatics : public IData {
 public:
  CStkUnClosedCompactsStatics();
  ~CStkUnClosedCompactsStatics() override;
  CStkUnClosedCompactsStatics(const CStkUnClosedCompactsStatics&);
  CStkUnClosedCompactsStatics& operator=(const CStkUnClosedCompactsStatics&);

  /// The statistic key, see `genKey`.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  /// Exchange, code, compact type, source and account key, joined by "____".
  static std::string genKey(std::string_view exchangeId, std::string_view code, char compactType, char source,
                            const CAccountInfoPtr& account);

  CInternedText exchangeId;
  CInternedText code;
  char compactType = '0';            ///< EKVCompactType
  char source = '0';                 ///< EKVCompactBrushSource
  std::int64_t financingVolume = 0;  ///< shares still financed
  std::int64_t lendingVolume = 0;    ///< borrowed shares still to be returned
  double compactAmount = 0;          ///< yuan; this and the next five sum the compact's fields of the same name
  double unpaidAmount = 0;
  double repaidAmount = 0;
  double interestAmount = 0;
  double feeAmount = 0;
  double penaltyAmount = 0;
  CAccountInfoPtr accountInfo;
};

using CStkUnClosedCompactsStaticsPtr = boost::shared_ptr<CStkUnClosedCompactsStatics>;

}  // namespace rdservice
