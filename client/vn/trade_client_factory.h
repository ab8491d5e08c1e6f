#pragma once

#include "vn/CTradeClient.h"

#include <chrono>
#include <memory>

namespace counter {
class ICounter;
}

namespace VN {

/// A trade client on `counter`, which outlives it. A request without an answer after `timeout` is answered with a
/// time-out error.
std::unique_ptr<CTradeClient> makeTradeClient(counter::ICounter& counter, std::chrono::milliseconds timeout);

/// Starts the counter's pushes, fetches accounts and instruments, and logs the accounts in that log in by themselves.
void startTradeClient(CTradeClient& client);

/// Stops the counter, then answers every request still out with `RDError::Stopped`. Nothing is called afterwards.
void stopTradeClient(CTradeClient& client);

}  // namespace VN
