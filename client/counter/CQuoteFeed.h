#pragma once

#include "rdservice/IData.h"
#include "utils/CMutex.h"

#include <random>
#include <set>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

/// Quotes: who hears of them, and how they move.
class CQuoteFeed {
 public:
  explicit CQuoteFeed(unsigned seed) : m_random(seed) {}

  /// Sets whose changes are pushed: stock keys, each followed by "|". Any thread.
  void subscribe(const std::string& stockKeys);
  /// Leaves the quotes that are subscribed to. Any thread.
  void removeOthers(std::vector<rdservice::IDataPtr>& quotes) const;

  /// Moves the last prices of up to `count` quotes by a few steps, never further than a tenth from the close price, in
  /// one transaction. Returns those of the moved ones that are subscribed to. Errors are logged and leave the quotes as
  /// they are. Only the counter's writer thread. The same seed on the same quotes makes the same moves.
  std::vector<rdservice::IDataPtr> move(const CSqlConnection& connection, int count);

 private:
  mutable utils::CMutex m_mutex;
  std::set<std::string> m_subscribed TS_GUARDED_BY(m_mutex);
  std::mt19937 m_random;  ///< the writer thread's
};

}  // namespace counter
