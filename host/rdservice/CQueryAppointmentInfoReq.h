#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

namespace rdservice {

/// Asks for the compacts of one account that are open for renewal by appointment. Answered by one
/// CQueryAppointmentInfoResp.
class HOST_API CQueryAppointmentInfoReq : public IData {
 public:
  CQueryAppointmentInfoReq();
  ~CQueryAppointmentInfoReq() override;
  CQueryAppointmentInfoReq(const CQueryAppointmentInfoReq&);
  CQueryAppointmentInfoReq& operator=(const CQueryAppointmentInfoReq&);

  /// Account key, exchange, code, start and end date, joined by "____".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  CAccountInfoPtr accountInfo;
  std::string exchangeId;  ///< empty, with an empty code, for every security
  std::string code;
  std::int32_t startDate = 0;  ///< first open date of compacts, yyyymmdd
  std::int32_t endDate = 0;    ///< last one, yyyymmdd
};

using CQueryAppointmentInfoReqPtr = boost::shared_ptr<CQueryAppointmentInfoReq>;

}  // namespace rdservice
