#include "kit/CScriptedCounter.h"

#include "rdservice/CQueryDataReq.h"
#include "rdservice/CStructDes.h"
#include "rdservice/service_requests.h"

#include <algorithm>
#include <iterator>

namespace kit {

using rdservice::IDataPtr;

namespace {

/// What the client fetches by itself when an account has logged in.
constexpr int FETCHED_TYPES[] = {rdservice::RecordPositionStatics, rdservice::RecordStkUnClosedCompactsStatics,
                                 rdservice::RecordStkOrder};

/// Null for a record that belongs to no account.
rdservice::CAccountInfoPtr accountOf(const rdservice::IData& record) {
  for (const rdservice::CFieldDes& field : record.getStructDes())
    if (field.type == rdservice::EFieldType::Account) return field.get<rdservice::CAccountInfoPtr>(record);
  return nullptr;
}

}  // namespace

CScriptedCounter::CScriptedCounter(std::vector<rdservice::CAccountInfoPtr> accounts,
                                   std::vector<rdservice::CInstrumentInfoPtr> instruments)
    : m_accounts(std::move(accounts)), m_instruments(std::move(instruments)) {}

CScriptedCounter::~CScriptedCounter() { stop(); }

void CScriptedCounter::start(counter::ICounterSink& sink) {
  {
    const utils::CMutexLock lock(m_mutex);
    m_sink = &sink;
  }
  m_thread = std::thread([this] { run(); });
}

void CScriptedCounter::stop() {
  {
    const utils::CMutexLock lock(m_mutex);
    m_stopped = true;
    m_calls.clear();
  }
  m_changed.notify_all();
  if (m_thread.joinable()) m_thread.join();
}

void CScriptedCounter::run() {
  for (;;) {
    std::function<void()> next;
    {
      utils::CMutexLock lock(m_mutex);
      m_calling = false;
      m_changed.notify_all();
      while (m_calls.empty() && !m_stopped) lock.wait(m_changed);
      if (m_stopped) return;
      next = std::move(m_calls.front());
      m_calls.pop_front();
      m_calling = true;
    }
    next();
  }
}

void CScriptedCounter::call(std::function<void()> function) {
  {
    const utils::CMutexLock lock(m_mutex);
    if (m_stopped) return;
    m_calls.push_back(std::move(function));
    ++m_activity;
  }
  m_changed.notify_all();
}

void CScriptedCounter::request(const IDataPtr& request, counter::CCounterReply reply) {
  switch (request->getBaseId()) {
    case rdservice::RequestQueryAccounts:
      return call([this, reply] { reply({}, {m_accounts.begin(), m_accounts.end()}, {}); });
    case rdservice::RequestQueryInstruments:
      return call([this, reply] { reply({}, {m_instruments.begin(), m_instruments.end()}, {}); });
    case rdservice::RequestLogin: {
      const auto& login = static_cast<const rdservice::CLoginReq&>(*request);
      call([reply] { reply({}, {}, {}); });
      return setLogin(login.accountKey,
                      login.login != 0 ? rdservice::LoginStatusReady : rdservice::LoginStatusLoggedOut);
    }
    case rdservice::RequestSubscribeQuotes: return replyKept(rdservice::RecordPriceData, nullptr, reply);
    case rdservice::RequestQueryData: {
      const auto& query = static_cast<const rdservice::CQueryDataReq&>(*request);
      if (std::find(std::begin(FETCHED_TYPES), std::end(FETCHED_TYPES), query.dataType) != std::end(FETCHED_TYPES))
        return replyKept(query.dataType, query.accountInfo, reply);
      [[fallthrough]];
    }
    default: {
      const utils::CMutexLock lock(m_mutex);
      m_held.push_back({request, std::move(reply)});
      ++m_activity;
    }
  }
}

std::vector<IDataPtr> CScriptedCounter::held() const {
  const utils::CMutexLock lock(m_mutex);
  std::vector<IDataPtr> requests;
  requests.reserve(m_held.size());
  for (const CHeld& held : m_held) requests.push_back(held.request);
  return requests;
}

counter::CCounterReply CScriptedCounter::replyOf(std::size_t number) const {
  const utils::CMutexLock lock(m_mutex);
  return m_held.at(number).reply;
}

void CScriptedCounter::keep(const std::vector<IDataPtr>& records) {
  const utils::CMutexLock lock(m_mutex);
  m_kept = records;
}

void CScriptedCounter::replyKept(int dataType, const rdservice::CAccountInfoPtr& account,
                                 const counter::CCounterReply& reply) {
  std::vector<IDataPtr> fresh;
  {
    const utils::CMutexLock lock(m_mutex);
    for (const IDataPtr& record : m_kept) {
      if (record->getBaseId() != dataType) continue;
      const auto owner = accountOf(*record);
      if (owner == nullptr || (account != nullptr && owner->getKey() == account->getKey()))
        fresh.push_back(record->copy());
    }
  }
  call([reply, fresh] { reply({}, fresh, {}); });
}

void CScriptedCounter::reply(std::size_t number, const std::vector<IDataPtr>& records, const bson::BSONObj& extra) {
  // A counter hands out records of its own, each time anew.
  std::vector<IDataPtr> fresh;
  for (const IDataPtr& record : records) fresh.push_back(record ? record->copy() : nullptr);
  call([reply = replyOf(number), fresh, extra] { reply({}, fresh, extra); });
}

void CScriptedCounter::fail(std::size_t number, int code, const std::string& text,
                            const std::vector<IDataPtr>& records) {
  call([reply = replyOf(number), error = utils::RDError(code, text), records] { reply(error, records, {}); });
}

void CScriptedCounter::push(const std::vector<IDataPtr>& records) {
  counter::ICounterSink* sink = nullptr;
  {
    const utils::CMutexLock lock(m_mutex);
    sink = m_sink;
  }
  std::vector<IDataPtr> fresh;
  for (const IDataPtr& record : records) fresh.push_back(record->copy());
  call([sink, fresh] { sink->onPush(fresh); });
}

void CScriptedCounter::setLogin(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status) {
  counter::ICounterSink* sink = nullptr;
  {
    const utils::CMutexLock lock(m_mutex);
    sink = m_sink;
  }
  call([sink, accountKey, status] { sink->onLoginStatus(accountKey, status, {}); });
}

void CScriptedCounter::waitIdle() {
  utils::CMutexLock lock(m_mutex);
  while (!m_stopped && (m_calling || !m_calls.empty())) lock.wait(m_changed);
}

std::uint64_t CScriptedCounter::activity() const {
  const utils::CMutexLock lock(m_mutex);
  return m_activity;
}

}  // namespace kit
