#pragma once

#include "rdservice/IData.h"

namespace rdservice {

/// Asks for the compacts of one account.
class HOST_API CQueryCompactReqV2 : public IData {
 public:
  CQueryCompactReqV2();
  ~CQueryCompactReqV2() override;
  CQueryCompactReqV2(const CQueryCompactReqV2&);
  CQueryCompactReqV2& operator=(const CQueryCompactReqV2&);

  /// Account key, compact type, position and count, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::int32_t dataType = 0;      ///< RecordStkUnClosedCompacts or RecordStkClosedCompacts; the trade client sets it
  std::int32_t compactType = 32;  ///< EKVCompactType; 32 for all
  std::string positionString;     ///< continue after the record with this position; empty from the beginning
  std::int32_t requestCount = 0;  ///< most records to return; 0 leaves it to the counter
  std::string accountKey;
};

using CQueryCompactReqV2Ptr = boost::shared_ptr<CQueryCompactReqV2>;

}  // namespace rdservice
