#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace GW {

/// Drops the last reference on a worker thread; in place when no client runs. Any thread.
void releaseOnWorker(std::shared_ptr<void> garbage);

/// Frees a container of old records: few of them at once, many on a worker thread, because freeing a table's worth
/// takes longer than a thread that paints or serves a queue may stall. Never call it with a lock held.
template <class T>
void releaseRecords(T&& garbage, std::size_t count) {
  constexpr std::size_t FREED_AT_ONCE = 512;
  T mine(std::forward<T>(garbage));
  if (count > FREED_AT_ONCE) releaseOnWorker(std::make_shared<T>(std::move(mine)));
}

}  // namespace GW
