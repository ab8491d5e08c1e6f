#include "vn/CRequestBook.h"

#include <utility>

namespace VN {

bool CRequestBook::CState::take(std::uint64_t id, COpen& taken) {
  const utils::CMutexLock lock(mutex);
  const auto found = open.find(id);
  if (found == open.end()) return false;
  taken = std::move(found->second);
  open.erase(found);
  return true;
}

CRequestBook::CRequestBook(counter::ICounter& counter, std::chrono::milliseconds timeout)
    : m_counter(counter), m_timeout(timeout) {}

CRequestBook::~CRequestBook() { close(); }

void CRequestBook::send(const rdservice::IDataPtr& request, counter::CCounterReply reply) {
  std::uint64_t id = 0;
  {
    const utils::CMutexLock lock(m_state->mutex);
    if (!m_state->closed) {
      id = ++m_state->lastId;
      // The timer may fire before the next line; it then waits for this lock and finds the request in the book.
      const std::uint64_t timer = m_timers->after(m_timeout, [state = m_state, id] {
        COpen late;
        if (state->take(id, late)) late.reply({utils::RDError::TimedOut, "柜台未在规定时间内应答"}, {}, {});
      });
      m_state->open.emplace(id, COpen{reply, timer});
    }
  }
  if (id == 0) {
    reply({utils::RDError::Stopped, "客户端已停止"}, {}, {});
    return;
  }
  m_counter.request(request, [state = m_state, timers = std::weak_ptr<net::CTimerQueue>(m_timers), id](
                                 const utils::RDError& error, const std::vector<rdservice::IDataPtr>& records,
                                 const bson::BSONObj& extra) {
    COpen answered;
    if (!state->take(id, answered)) return;
    if (const auto queue = timers.lock()) queue->cancel(answered.timer);
    answered.reply(error, records, extra);
  });
}

void CRequestBook::close() {
  m_timers->stop();
  std::unordered_map<std::uint64_t, COpen> rest;
  {
    const utils::CMutexLock lock(m_state->mutex);
    m_state->closed = true;
    rest.swap(m_state->open);
  }
  for (auto& [id, request] : rest) request.reply({utils::RDError::Stopped, "客户端已停止"}, {}, {});
}

}  // namespace VN
