#include "vn/CRequestBook.h"

#include <utility>

namespace VN {

namespace {

// Texts for users.
constexpr const char* STOPPED = "客户端已停止";
constexpr const char* TIMED_OUT = "柜台未在规定时间内应答";

}  // namespace

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

std::uint64_t CRequestBook::enter(counter::CCounterReply reply, std::chrono::milliseconds wait, utils::RDError late) {
  {
    const utils::CMutexLock lock(m_state->mutex);
    if (!m_state->closed) {
      const std::uint64_t id = ++m_state->lastId;
      // The timer may fire before the next line; it then waits for this lock and finds the request in the book.
      const std::uint64_t timer = m_timers->after(wait, [state = m_state, id, late = std::move(late)] {
        COpen open;
        if (state->take(id, open)) open.reply(late, {}, {});
      });
      m_state->open.emplace(id, COpen{std::move(reply), timer});
      return id;
    }
  }
  reply({utils::RDError::Stopped, STOPPED}, {}, {});
  return 0;
}

void CRequestBook::refuse(utils::RDError error, counter::CCounterReply reply) {
  enter(std::move(reply), std::chrono::milliseconds(0), std::move(error));
}

void CRequestBook::send(const rdservice::IDataPtr& request, counter::CCounterReply reply) {
  const std::uint64_t id = enter(std::move(reply), m_timeout, {utils::RDError::TimedOut, TIMED_OUT});
  if (id == 0) return;
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
  for (auto& [id, request] : rest) request.reply({utils::RDError::Stopped, STOPPED}, {}, {});
}

}  // namespace VN
