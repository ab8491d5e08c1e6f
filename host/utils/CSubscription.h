#pragma once

#include "host_api.h"

#include <memory>

namespace utils {

/// Owned handle of a subscription: dropping it unsubscribes. When the destructor returns, no call of the callback is
/// running on another thread and none comes later. Dropping it from inside its own callback is allowed; that call then
/// runs to its end. Any thread, but not while holding a lock that the callback takes.
class HOST_API CSubscription {
 public:
  virtual ~CSubscription();
  CSubscription(const CSubscription&) = delete;
  CSubscription& operator=(const CSubscription&) = delete;

 protected:
  CSubscription();
};

using CSubscriptionPtr = std::shared_ptr<CSubscription>;

}  // namespace utils
