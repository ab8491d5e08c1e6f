#pragma once

namespace runtime {

/// How the embedded counter answers requests, fills orders and moves quotes.
struct CCounterBehaviour {
  static constexpr int MAX_LATENCY_MS = 60000;
  static constexpr int MAX_EVERY = 1000000;
  static constexpr int MAX_FILL_DELAY_MS = 600000;
  static constexpr int MAX_QUOTES = 100000;
  static constexpr int MIN_QUOTE_INTERVAL_MS = 10;
  static constexpr int MAX_QUOTE_INTERVAL_MS = 600000;

  int latencyMs = 0;           ///< every reply comes that much later
  int failEvery = 0;           ///< every n-th request fails; 0 never
  int silentEvery = 0;         ///< every n-th request is not answered; 0 never
  int fillDelayMs = 0;         ///< an order is filled that much later
  int quotesPerMove = 0;       ///< quotes that move at each interval; 0 none
  int quoteIntervalMs = 1000;  ///< from move to move
};

}  // namespace runtime
