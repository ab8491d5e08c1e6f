#pragma once

namespace runtime {

/// How the embedded counter answers requests.
struct CCounterBehaviour {
  static constexpr int MAX_LATENCY_MS = 60000;
  static constexpr int MAX_EVERY = 1000000;

  int latencyMs = 0;    ///< every reply comes that much later
  int failEvery = 0;    ///< every n-th request fails; 0 never
  int silentEvery = 0;  ///< every n-th request is not answered; 0 never
};

}  // namespace runtime
