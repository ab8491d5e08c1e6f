#pragma once

#include "bson/BSONObj.h"
#include "rdservice/meta_types.h"

#include <QObject>

#include <vector>

namespace VN {

/// Carries one answer of the trading service to the GUI thread. The service's callback shares it with the panel's
/// request and emits; whoever is connected, queued, may be gone by then.
class CQueryAppointRespWrapper : public QObject {
  Q_OBJECT
 public:
  CQueryAppointRespWrapper();
  ~CQueryAppointRespWrapper() override;

 Q_SIGNALS:
  void sigResp(const rdservice::CQueryAppointmentInfoReqPtr& request, const utils::RDError& error,
               const rdservice::IDataPtr& data, bson::bo extra);
  void sigResps(const rdservice::CCreditCompactRenewalApplyPtr& apply, const utils::RDError& error,
                const std::vector<rdservice::IDataPtr>& datas, bson::bo extra);
};

}  // namespace VN
