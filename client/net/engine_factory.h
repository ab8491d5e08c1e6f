#pragma once

#include "net/RPCEngine.h"

#include <memory>

namespace net {

/// The running client's engine with that many worker threads (at least one). One at a time.
std::unique_ptr<RPCEngine> makeRPCEngine(unsigned threads);

/// Stops the running client's engine, which `engine` must be: waits for the tasks that run, and frees those that are
/// queued without running them. Later posts are dropped. Idempotent; any thread but the engine's own. Destroying the
/// engine stops it too.
void stopEngine(RPCEngine& engine);

}  // namespace net
