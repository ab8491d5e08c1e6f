#include "appointment/CQueryAppointRespWrapper.h"

namespace VN {

CQueryAppointRespWrapper::CQueryAppointRespWrapper() = default;
CQueryAppointRespWrapper::~CQueryAppointRespWrapper() = default;

}  // namespace VN
