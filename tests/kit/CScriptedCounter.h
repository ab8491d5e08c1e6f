#pragma once

#include "counter/ICounter.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CInstrumentInfo.h"
#include "utils/CMutex.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <set>
#include <thread>
#include <vector>

namespace kit {

/// A counter that does what a test tells it: answers accounts, instruments, log-ins and what the client fetches then by
/// itself, and holds every other request until the test releases a reply, in any order, late, twice, failed or never.
/// Replies and pushes are called on its service thread. The members of a test's side run on the test's thread.
class CScriptedCounter final : public counter::ICounter {
 public:
  CScriptedCounter(std::vector<rdservice::CAccountInfoPtr> accounts,
                   std::vector<rdservice::CInstrumentInfoPtr> instruments);
  ~CScriptedCounter() override;

  void start(counter::ICounterSink& sink) override;
  void request(const rdservice::IDataPtr& request, counter::CCounterReply reply) override;
  void stop() override;

  /// Requests held so far, in order of arrival; their place is the number that `reply` and `fail` take.
  std::vector<rdservice::IDataPtr> held() const;

  /// Positions, statistics, orders and quotes that it answers with from now on; at first it has none.
  void keep(const std::vector<rdservice::IDataPtr>& records);

  /// Answers a held request; again for a duplicate.
  void reply(std::size_t number, const std::vector<rdservice::IDataPtr>& records, const bson::BSONObj& extra = {});
  void fail(std::size_t number, int code, const std::string& text,
            const std::vector<rdservice::IDataPtr>& records = {});
  void push(const std::vector<rdservice::IDataPtr>& records);
  void setLogin(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status);

  /// Waits until everything released so far has been called.
  void waitIdle();
  /// Rises with every request and every call; unchanged means that nothing happened.
  std::uint64_t activity() const;

 private:
  struct CHeld {
    rdservice::IDataPtr request;
    counter::CCounterReply reply;
  };

  void call(std::function<void()> function);
  void replyKept(int dataType, const rdservice::CAccountInfoPtr& account, const counter::CCounterReply& reply);
  void run();
  counter::CCounterReply replyOf(std::size_t number) const;

  const std::vector<rdservice::CAccountInfoPtr> m_accounts;
  const std::vector<rdservice::CInstrumentInfoPtr> m_instruments;

  mutable utils::CMutex m_mutex;
  std::condition_variable m_changed;
  counter::ICounterSink* m_sink TS_GUARDED_BY(m_mutex) = nullptr;
  std::vector<rdservice::IDataPtr> m_kept TS_GUARDED_BY(m_mutex);
  std::vector<CHeld> m_held TS_GUARDED_BY(m_mutex);
  std::deque<std::function<void()>> m_calls TS_GUARDED_BY(m_mutex);
  bool m_calling TS_GUARDED_BY(m_mutex) = false;
  bool m_stopped TS_GUARDED_BY(m_mutex) = false;
  std::uint64_t m_activity TS_GUARDED_BY(m_mutex) = 0;
  std::thread m_thread;
};

}  // namespace kit
