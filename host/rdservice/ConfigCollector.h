#pragma once

#include "host_api.h"

#include <memory>

namespace rdservice {

/// The broker's switches and limits, as the configuration files set them when the client starts. Any thread.
class HOST_API ConfigCollector {
 public:
  struct Private;

  /// The running client's; null when no client runs.
  static ConfigCollector* instance();

  explicit ConfigCollector(std::unique_ptr<Private> d);
  ~ConfigCollector();

  /// Compact tables show their rows in pages.
  bool useSplitPageOfStkCompact() const;
  /// Compacts are queried by compact type, request by request, instead of by the generic data query.
  bool calcCompactType() const;
  /// Most compacts that a counter of this type returns in one reply; 0 when it has no limit.
  int getCounterMaxCompactsRespNum(int counterType) const;
  /// Whether counters of this type repeat records from reply to reply, so that records already held must be skipped.
  bool isGTJAQueryCompactsMode(int counterType) const;

 private:
  std::unique_ptr<Private> m_d;
};

/// Rules that depend on the counter type. Any thread.
class HOST_API DataHelper {
 public:
  /// Whether counters of this type refuse to extend compacts opened today.
  static bool isRenewalNotUseTodayCompactsPts(int counterType);
};

}  // namespace rdservice
