#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

namespace rdservice {

/// Asks for every record of one type that an account has.
class HOST_API CQueryDataReq : public IData {
 public:
  CQueryDataReq();
  ~CQueryDataReq() override;
  CQueryDataReq(const CQueryDataReq&);
  CQueryDataReq& operator=(const CQueryDataReq&);

  /// Account key and data type, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  std::int32_t dataType = 0;  ///< ERecordType
};

using CQueryDataReqPtr = boost::shared_ptr<CQueryDataReq>;

}  // namespace rdservice
