#pragma once

#include "bson/BSONObj.h"
#include "host_api.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/rdservice_enums.h"
#include "utils/RDError.h"

#include <QMetaType>

#include <string>
#include <vector>

// What travels through queued signals.
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(utils::RDError)
Q_DECLARE_METATYPE(std::vector<utils::RDError>)
Q_DECLARE_METATYPE(rdservice::IDataPtr)
Q_DECLARE_METATYPE(std::vector<rdservice::IDataPtr>)
Q_DECLARE_METATYPE(rdservice::CAccountInfoPtr)
Q_DECLARE_METATYPE(rdservice::CStkUnClosedCompactsPtr)
Q_DECLARE_METATYPE(rdservice::CStkClosedCompactsPtr)
Q_DECLARE_METATYPE(rdservice::CStkUnClosedCompactsStaticsPtr)
Q_DECLARE_METATYPE(rdservice::CStkCompactChangePtr)
Q_DECLARE_METATYPE(rdservice::CCreditRepayPriorityRespPtr)
Q_DECLARE_METATYPE(rdservice::CCreditCompactRenewalApplyPtr)
Q_DECLARE_METATYPE(rdservice::CQueryAppointmentInfoReqPtr)
Q_DECLARE_METATYPE(rdservice::EBROKER_LOGIN_STATUS)
Q_DECLARE_METATYPE(bson::BSONObj)

namespace rdservice {

/// Registers the types above under the names that signal signatures use. Once per process is enough; GUI thread. A
/// panel calls it before it connects anything.
HOST_API void registerMetaTypes();

}  // namespace rdservice
