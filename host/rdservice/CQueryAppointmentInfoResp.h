#pragma once

#include "rdservice/IData.h"

#include <vector>

namespace rdservice {

/// The answer to CQueryAppointmentInfoReq.
class HOST_API CQueryAppointmentInfoResp : public IData {
 public:
  CQueryAppointmentInfoResp();
  ~CQueryAppointmentInfoResp() override;
  CQueryAppointmentInfoResp(const CQueryAppointmentInfoResp&);
  CQueryAppointmentInfoResp& operator=(const CQueryAppointmentInfoResp&);

  /// The result flag.
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::int32_t resultFlag = 0;    ///< 0: there are no records
  std::vector<IDataPtr> records;  ///< of StockSMTQueryAppointmentInfoResp
};

using CQueryAppointmentInfoRespPtr = boost::shared_ptr<CQueryAppointmentInfoResp>;

}  // namespace rdservice
