#include "rdservice/meta_types.h"

namespace rdservice {

void registerMetaTypes() {
  qRegisterMetaType<std::string>("std::string");
  qRegisterMetaType<utils::RDError>("utils::RDError");
  qRegisterMetaType<std::vector<utils::RDError>>("std::vector<utils::RDError>");
  qRegisterMetaType<IDataPtr>("rdservice::IDataPtr");
  qRegisterMetaType<std::vector<IDataPtr>>("std::vector<rdservice::IDataPtr>");
  qRegisterMetaType<CAccountInfoPtr>("rdservice::CAccountInfoPtr");
  qRegisterMetaType<CStkUnClosedCompactsPtr>("rdservice::CStkUnClosedCompactsPtr");
  qRegisterMetaType<CStkClosedCompactsPtr>("rdservice::CStkClosedCompactsPtr");
  qRegisterMetaType<CStkUnClosedCompactsStaticsPtr>("rdservice::CStkUnClosedCompactsStaticsPtr");
  qRegisterMetaType<CStkCompactChangePtr>("rdservice::CStkCompactChangePtr");
  qRegisterMetaType<CCreditRepayPriorityRespPtr>("rdservice::CCreditRepayPriorityRespPtr");
  qRegisterMetaType<CCreditCompactRenewalApplyPtr>("rdservice::CCreditCompactRenewalApplyPtr");
  qRegisterMetaType<CQueryAppointmentInfoReqPtr>("rdservice::CQueryAppointmentInfoReqPtr");
  qRegisterMetaType<EBROKER_LOGIN_STATUS>("rdservice::EBROKER_LOGIN_STATUS");
  qRegisterMetaType<bson::BSONObj>("bson::BSONObj");
  qRegisterMetaType<bson::BSONObj>("bson::bo");
}

}  // namespace rdservice
