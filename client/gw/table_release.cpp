#include "gw/table_release.h"

#include "net/RPCEngine.h"

#include <string>

namespace GW {

void releaseOnWorker(std::shared_ptr<void> garbage) {
  static const std::string STRAND_NAME = "release";
  net::RPCEngine* engine = net::RPCEngine::instance();
  if (engine == nullptr) return;
  engine->getStrand(STRAND_NAME)->post([garbage = std::move(garbage)]() mutable { garbage.reset(); });
}

}  // namespace GW
