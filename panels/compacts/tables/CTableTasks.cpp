#include "compacts/tables/CTableTasks.h"

#include <exception>

namespace VN {

namespace {

constexpr const char* STRAND_NAME = "hpfmodel";

}  // namespace

CTableTasks::CTableTasks(std::function<void(const std::string&)> onFailure)
    : m_onFailure(std::move(onFailure)),
      m_strand(net::RPCEngine::instance()->getStrand(STRAND_NAME)),
      m_lifeline(this) {}

CTableTasks::~CTableTasks() = default;

void CTableTasks::run(const std::function<void()>& task) const {
  try {
    task();
  } catch (const std::exception& e) {
    m_onFailure(e.what());
  } catch (...) {
    m_onFailure("unknown exception");
  }
}

}  // namespace VN
