#include "utils/CSubscription.h"

namespace utils {

CSubscription::CSubscription() = default;
CSubscription::~CSubscription() = default;

}  // namespace utils
