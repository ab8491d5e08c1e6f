#include "vn/CTradeClient.h"

#include "rdservice/CErrorResp.h"
#include "rdservice/CStructDes.h"
#include "rdservice/ConfigCollector.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/entry_list.h"
#include "rdservice/reply_marks.h"
#include "rdservice/service_requests.h"
#include "utils/CCallbackList.h"
#include "utils/CInstance.h"
#include "utils/CLogCenter.h"
#include "vn/CRequestBook.h"
#include "vn/CUserConfig.h"
#include "vn/order_requests.h"
#include "vn/trade_client_factory.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* FILE_NAME = "CTradeClient.cpp";

constexpr utils::CLogSite START_SITE{FILE_NAME, "void VN::startTradeClient(CTradeClient&)"};
constexpr utils::CLogSite QUOTES_SITE{FILE_NAME, "void VN::CTradeClient::Private::subscribeQuotes()"};
constexpr utils::CLogSite ORDER_SITE{FILE_NAME, "bool VN::CTradeClient::placeCommands(const CPlaceCommandParameter&)"};

constexpr const char* NO_ACCOUNT = "请求没有资金账号";  // for users

rdservice::CDataCenter* dataCentre() {
  rdservice::TraderCenter* centre = rdservice::TraderCenter::instance();
  return centre != nullptr ? centre->getDataCenter() : nullptr;
}

/// The account of a pushed record: the value of its type's account field.
rdservice::CAccountInfoPtr accountOf(const rdservice::IData& record) {
  for (const rdservice::CFieldDes& field : record.getStructDes())
    if (field.type == rdservice::EFieldType::Account) return field.get<rdservice::CAccountInfoPtr>(record);
  return nullptr;
}

/// What the account's store holds before a request is sent is older than the reply; see reply_marks.h.
std::uint64_t markOf(const std::string& accountKey) {
  rdservice::CDataCenter* centre = dataCentre();
  const rdservice::CAccountDataPtr account = centre != nullptr ? centre->getAccountData(accountKey) : nullptr;
  return account ? rdservice::takeMark(*account) : 0;
}

bool isCompactType(int dataType) {
  return dataType == rdservice::RecordStkUnClosedCompacts || dataType == rdservice::RecordStkClosedCompacts;
}

/// A reply with every unclosed compact of the account is announced to its store.
void noteIfWhole(const rdservice::CQueryCompactReqV2& request, const std::vector<IDataPtr>& records,
                 std::uint64_t mark) {
  if (request.dataType != rdservice::RecordStkUnClosedCompacts || request.compactType != rdservice::CompactTypeAll ||
      !request.positionString.empty())
    return;
  rdservice::CDataCenter* centre = dataCentre();
  const auto account = centre != nullptr ? centre->getAccountData(request.accountKey) : nullptr;
  if (account == nullptr) return;
  const auto* config = rdservice::ConfigCollector::instance();
  const int limit =
      config != nullptr ? config->getCounterMaxCompactsRespNum(account->getAccountInfo()->counterType) : 0;
  const int most = limit > 0 ? std::min(limit, request.requestCount) : request.requestCount;
  if (static_cast<int>(records.size()) < most) rdservice::noteWholeReply(*account, records, mark);
}

/// Fetched when an account has logged in.
constexpr int LOGIN_TYPES[] = {rdservice::RecordPositionStatics, rdservice::RecordStkUnClosedCompactsStatics,
                               rdservice::RecordStkOrder};

/// Whether what a generic query brings becomes the account's set in the data centre.
bool isKept(int dataType) {
  return isCompactType(dataType) ||
         std::find(std::begin(LOGIN_TYPES), std::end(LOGIN_TYPES), dataType) != std::end(LOGIN_TYPES);
}

/// Compacts that the request is about, going by its longest list.
std::size_t entriesOf(const rdservice::CSetCreditRepayPriorityReq& request) {
  std::size_t most = 0;
  for (const std::string* list : {&request.openDates, &request.orderNumbers, &request.priorities})
    most = std::max(most, rdservice::splitEntries(*list).size());
  return most;
}

bool isGone(rdservice::EBROKER_LOGIN_STATUS status) {
  return status == rdservice::LoginStatusLoggedOut || status == rdservice::LoginStatusFailed;
}

utils::RDError goneError() { return {utils::RDError::NoAccount, "资金账号已退出登录"}; }

}  // namespace

struct CTradeClient::Private : counter::ICounterSink {
  Private(counter::ICounter& c, std::chrono::milliseconds timeout) : theCounter(c), requests(c, timeout) {}
  static Private& of(CTradeClient& client) { return *client.m_d; }

  void start();
  void stop();

  void onPush(const std::vector<IDataPtr>& records) override;
  void onLoginStatus(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status,
                     const std::string& text) override;
  void queryAccounts();
  void failStart(const char* what, const utils::RDError& error);
  void takeAccounts(const std::vector<IDataPtr>& records);
  void queryCompacts(int dataType, const rdservice::CQueryCompactReqV2Ptr& request, CCompactReply reply);
  rdservice::CAccountInfoPtr accountOfKey(const std::string& accountKey) const;
  /// Whether the account has logged out or lost its connection: what was asked before must not come back.
  bool hasGone(const std::string& accountKey) const;
  /// A copy of the request, unless it names no account.
  template <class Request>
  void sendForAccount(const boost::shared_ptr<Request>& request, counter::CCounterReply reply);
  void fetchAccount(const rdservice::CAccountInfoPtr& account);
  void dropCompacts(const std::string& accountKey);
  void subscribeQuotes();
  void placeOrder(const rdservice::CPlaceOrderReqPtr& request);
  void takeData(const std::string& accountKey, std::uint64_t mark, int dataType, const utils::RDError& error,
                const std::vector<IDataPtr>& records);

  counter::ICounter& theCounter;
  CRequestBook requests;
  utils::CCallbackList<bool, const std::string&, int> compactChange;
  CTradeClient* q = nullptr;
  std::atomic<bool> quotesAsked{false};

  mutable utils::CMutex mutex;
  std::map<std::string, rdservice::EBROKER_LOGIN_STATUS> loginStatus TS_GUARDED_BY(mutex);
  std::map<std::string, rdservice::CAccountInfoPtr> accounts TS_GUARDED_BY(mutex);

  std::unique_ptr<utils::CInstance<CTradeClient>> registration;
};

CTradeClient* CTradeClient::instance() { return utils::CInstance<CTradeClient>::get(); }

CTradeClient::CTradeClient(std::unique_ptr<Private> d) : m_d(std::move(d)) {
  m_d->q = this;
  m_d->registration = std::make_unique<utils::CInstance<CTradeClient>>(this);
}

CTradeClient::~CTradeClient() { m_d->stop(); }

rdservice::EBROKER_LOGIN_STATUS CTradeClient::getLoginStatus(const std::string& accountKey) const {
  const utils::CMutexLock lock(m_d->mutex);
  const auto found = m_d->loginStatus.find(accountKey);
  return found != m_d->loginStatus.end() ? found->second : rdservice::LoginStatusNone;
}

void CTradeClient::queryUnclosedCompacts(const rdservice::CQueryCompactReqV2Ptr& request, CCompactReply reply) {
  m_d->queryCompacts(rdservice::RecordStkUnClosedCompacts, request, std::move(reply));
}

void CTradeClient::queryClosedCompacts(const rdservice::CQueryCompactReqV2Ptr& request, CCompactReply reply) {
  m_d->queryCompacts(rdservice::RecordStkClosedCompacts, request, std::move(reply));
}

void CTradeClient::Private::queryCompacts(int dataType, const rdservice::CQueryCompactReqV2Ptr& request,
                                          CCompactReply reply) {
  const auto sent = boost::make_shared<rdservice::CQueryCompactReqV2>(*request);
  sent->dataType = dataType;
  const std::uint64_t mark = markOf(sent->accountKey);
  requests.send(sent,
                [this, mark, sent, reply = std::move(reply)](
                    const utils::RDError& error, const std::vector<IDataPtr>& records, const bson::BSONObj& extra) {
                  if (error.isSuccess() && hasGone(sent->accountKey)) return reply(goneError(), {}, 0, extra);
                  rdservice::noteMark(records, mark);
                  if (error.isSuccess()) noteIfWhole(*sent, records, mark);
                  reply(error, records, 0, extra);
                });
}

void CTradeClient::queryData(const rdservice::CQueryDataReqPtr& request, CDataReply reply, int, int) {
  const auto sent = boost::make_shared<rdservice::CQueryDataReq>(*request);
  const std::string accountKey = sent->accountInfo ? sent->accountInfo->getKey() : std::string();
  const std::uint64_t mark = markOf(accountKey);
  m_d->requests.send(
      sent, [this, accountKey, mark, dataType = sent->dataType, reply = std::move(reply)](
                const utils::RDError& error, const std::vector<IDataPtr>& records, const bson::BSONObj& extra) {
        const bool isLate = error.isSuccess() && isCompactType(dataType) && m_d->hasGone(accountKey);
        const utils::RDError outcome = isLate ? goneError() : error;
        const std::vector<IDataPtr> none;
        const std::vector<IDataPtr>& taken = isLate ? none : records;
        if (isKept(dataType)) m_d->takeData(accountKey, mark, dataType, outcome, taken);
        if (reply) reply(outcome, taken, extra);
      });
}

void CTradeClient::Private::takeData(const std::string& accountKey, std::uint64_t mark, int dataType,
                                     const utils::RDError& error, const std::vector<IDataPtr>& records) {
  if (error.isSuccess()) {
    rdservice::CDataCenter* centre = dataCentre();
    if (const auto account = centre != nullptr ? centre->getAccountData(accountKey) : nullptr)
      rdservice::replaceAsOf(*account, dataType, records, mark);
  } else {
    constexpr utils::CLogSite SITE{FILE_NAME,
                                   "void VN::CTradeClient::queryData(const rdservice::CQueryDataReqPtr&, "
                                   "CDataReply, int, int)"};
    utils::logInfo(SITE, "[query data] fail : acc = {0}, data type = {1}, errmsg = {2}", accountKey, dataType,
                   error.errorMsg());
  }
  if (isCompactType(dataType)) compactChange.call(error.isSuccess(), accountKey, dataType);
}

utils::CSubscriptionPtr CTradeClient::subscribeCompactChange(CCompactChange callback) {
  return m_d->compactChange.add(std::move(callback));
}

template <class Request>
void CTradeClient::Private::sendForAccount(const boost::shared_ptr<Request>& request, counter::CCounterReply reply) {
  if (request->accountInfo == nullptr)
    requests.refuse({utils::RDError::NoAccount, NO_ACCOUNT}, std::move(reply));
  else
    requests.send(request->copy(), std::move(reply));
}

void CTradeClient::setCreditRepayPriority(const rdservice::CSetCreditRepayPriorityReqPtr& request,
                                          CPriorityReply reply) {
  m_d->sendForAccount(request,
                      [entries = entriesOf(*request), reply = std::move(reply)](
                          const utils::RDError& error, const std::vector<IDataPtr>& records, const bson::BSONObj&) {
                        if (!error.isSuccess())
                          return reply(std::vector<utils::RDError>(std::max<std::size_t>(entries, 1), error), {});
                        std::vector<utils::RDError> errors;
                        std::vector<IDataPtr> responses;
                        for (const IDataPtr& record : records) {
                          if (const auto refused = boost::dynamic_pointer_cast<rdservice::CErrorResp>(record))
                            errors.emplace_back(refused->errorCode, refused->errorText);
                          else if (record && record->getBaseId() == rdservice::RecordCreditRepayPriorityResp)
                            responses.push_back(record);
                        }
                        reply(errors, responses);
                      });
}

void CTradeClient::applyCompactRenewal(const rdservice::CCreditCompactRenewalApplyPtr& application, CDataReply reply) {
  m_d->sendForAccount(application, std::move(reply));
}

void CTradeClient::queryAppointmentInfo(const rdservice::CQueryAppointmentInfoReqPtr& request,
                                        CAppointmentReply reply) {
  m_d->sendForAccount(request,
                      [reply = std::move(reply)](const utils::RDError& error, const std::vector<IDataPtr>& records,
                                                 const bson::BSONObj& extra) {
                        reply(error, records.empty() ? nullptr : records.front(), extra);
                      });
}

void CTradeClient::setLogin(const std::string& accountKey, bool login) {
  const auto request = boost::make_shared<rdservice::CLoginReq>();
  request->accountKey = accountKey;
  request->login = login ? 1 : 0;
  if (login) m_d->onLoginStatus(accountKey, rdservice::LoginStatusLoggingIn, std::string());
  m_d->requests.send(request, [this, accountKey, login](const utils::RDError& error, const std::vector<IDataPtr>&,
                                                        const bson::BSONObj&) {
    // Success is told by the counter itself, through the sink.
    const bool failed = !error.isSuccess() && error.errorCode() != utils::RDError::Stopped;
    if (failed && login) m_d->onLoginStatus(accountKey, rdservice::LoginStatusFailed, error.errorMsg());
  });
}

void CTradeClient::Private::onPush(const std::vector<IDataPtr>& records) {
  rdservice::CDataCenter* centre = dataCentre();
  if (centre == nullptr) return;
  std::map<std::string, std::vector<IDataPtr>> byAccount;
  std::vector<IDataPtr> quotes;
  for (const IDataPtr& record : records) {
    if (record && record->getBaseId() == rdservice::RecordPriceData) quotes.push_back(record);
    const rdservice::CAccountInfoPtr account = record ? accountOf(*record) : nullptr;
    if (account) byAccount[account->getKey()].push_back(record);
  }
  for (const auto& [key, changed] : byAccount)
    if (const auto account = centre->getAccountData(key)) account->updateDatas(changed);
  if (!quotes.empty()) centre->getMarketData()->updateDatas(quotes);
}

void CTradeClient::Private::onLoginStatus(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status,
                                          const std::string& text) {
  rdservice::CAccountInfoPtr account;
  {
    const utils::CMutexLock lock(mutex);
    const auto found = accounts.find(accountKey);
    if (found == accounts.end()) return;
    account = found->second;
    loginStatus[accountKey] = status;
  }
  if (isGone(status)) dropCompacts(accountKey);
  Q_EMIT q->sigLoginStatus(account, status, text);
  if (rdservice::isLoginStatusReady(status)) fetchAccount(account);
}

bool CTradeClient::Private::hasGone(const std::string& accountKey) const {
  const utils::CMutexLock lock(mutex);
  const auto found = loginStatus.find(accountKey);
  return found != loginStatus.end() && isGone(found->second);
}

/// Nothing keeps the compacts of an account up to date that is not logged in.
void CTradeClient::Private::dropCompacts(const std::string& accountKey) {
  rdservice::CDataCenter* centre = dataCentre();
  const rdservice::CAccountDataPtr store = centre != nullptr ? centre->getAccountData(accountKey) : nullptr;
  if (!store) return;
  for (const int dataType : {rdservice::RecordStkUnClosedCompacts, rdservice::RecordStkClosedCompacts})
    store->removeMetaData(dataType);
}

rdservice::CAccountInfoPtr CTradeClient::Private::accountOfKey(const std::string& accountKey) const {
  const utils::CMutexLock lock(mutex);
  const auto found = accounts.find(accountKey);
  return found == accounts.end() ? nullptr : found->second;
}

void CTradeClient::Private::fetchAccount(const rdservice::CAccountInfoPtr& account) {
  for (const int dataType : LOGIN_TYPES) {
    const auto request = boost::make_shared<rdservice::CQueryDataReq>();
    request->accountInfo = account;
    request->dataType = dataType;
    q->queryData(request, nullptr);
  }
  subscribeQuotes();
}

void CTradeClient::Private::subscribeQuotes() {
  rdservice::CDataCenter* centre = dataCentre();
  if (centre == nullptr || quotesAsked.exchange(true)) return;
  const auto request = boost::make_shared<rdservice::CSubscribeQuotesReq>();
  for (const auto& instrument : centre->getInstruments()) request->stockKeys += instrument->getKey() + "|";
  const std::uint64_t mark = rdservice::takeMark(*centre->getMarketData());
  requests.send(request,
                [this, mark](const utils::RDError& error, const std::vector<IDataPtr>& quotes, const bson::BSONObj&) {
                  rdservice::CDataCenter* const now = dataCentre();
                  if (error.isSuccess() && now != nullptr)
                    return rdservice::replaceAsOf(*now->getMarketData(), rdservice::RecordPriceData, quotes, mark);
                  quotesAsked = false;  // the next log-in tries again
                  utils::logInfo(QUOTES_SITE, "[quotes] fail : errmsg = {0}", error.errorMsg());
                });
}

void CTradeClient::Private::placeOrder(const rdservice::CPlaceOrderReqPtr& request) {
  const std::uint64_t mark = markOf(request->accountKey);
  requests.send(request, [this, mark, request](const utils::RDError& error, const std::vector<IDataPtr>& orders,
                                               const bson::BSONObj&) {
    if (error.errorCode() == utils::RDError::Stopped) return;
    rdservice::CDataCenter* const centre = dataCentre();
    const auto account = centre != nullptr ? centre->getAccountData(request->accountKey) : nullptr;
    if (account == nullptr) return;
    if (error.isSuccess()) {
      rdservice::noteMark(orders, mark);  // what was pushed about them meanwhile is newer
      account->updateDatas(orders);
      return;
    }
    account->updateData(makeFailedOrder(*request, accountOfKey(request->accountKey), error), false);
    utils::logInfo(ORDER_SITE, "PT! [ORDER] fail : acc = {0}, code = {1}, errmsg = {2}", request->accountKey,
                   request->exchangeId + request->code, error.errorMsg());
  });
}

bool CTradeClient::placeCommands(const CPlaceCommandParameter& parameter) {
  const auto requests = makeOrderRequests(
      parameter, [this](const std::string& accountKey) { return m_d->accountOfKey(accountKey) != nullptr; });
  for (const auto& request : requests) m_d->placeOrder(request);
  return !requests.empty();
}

void CTradeClient::Private::takeAccounts(const std::vector<IDataPtr>& records) {
  QList<CAccountPtr> listed;
  std::vector<rdservice::CAccountInfoPtr> infos;
  for (const IDataPtr& record : records) {
    const auto info = boost::dynamic_pointer_cast<rdservice::CAccountInfo>(record);
    if (!info) continue;
    infos.push_back(info);
    listed.push_back(boost::make_shared<CAccount>(*info));
  }
  if (rdservice::CDataCenter* centre = dataCentre()) centre->setAccounts(infos);
  if (CUserConfig* user = getUserConfig()) user->setAccountDatas(listed);
  {
    const utils::CMutexLock lock(mutex);
    for (const auto& info : infos) {
      accounts[info->getKey()] = info;
      loginStatus.emplace(info->getKey(), rdservice::LoginStatusLoggedOut);
    }
  }
  Q_EMIT q->sigAccountsChanged();
  for (const auto& info : infos)
    if (info->autoLogin != 0) q->setLogin(info->getKey(), true);
}

void CTradeClient::Private::start() {
  theCounter.start(*this);
  // Instruments first, so that names are known by the time an account can be queried.
  requests.send(boost::make_shared<rdservice::CQueryInstrumentsReq>(),
                [this](const utils::RDError& error, const std::vector<IDataPtr>& instruments, const bson::BSONObj&) {
                  if (!error.isSuccess()) return failStart("instruments", error);
                  if (rdservice::CDataCenter* centre = dataCentre()) centre->setInstruments(instruments);
                  queryAccounts();
                });
}

void CTradeClient::Private::queryAccounts() {
  requests.send(boost::make_shared<rdservice::CQueryAccountsReq>(),
                [this](const utils::RDError& error, const std::vector<IDataPtr>& records, const bson::BSONObj&) {
                  if (!error.isSuccess()) return failStart("accounts", error);
                  takeAccounts(records);
                });
}

void CTradeClient::Private::failStart(const char* what, const utils::RDError& error) {
  if (error.errorCode() == utils::RDError::Stopped) return;
  utils::logError(START_SITE, "[start] {0} : errmsg = {1}", what, error.errorMsg());
  Q_EMIT q->sigStartFailed(QString::fromStdString(error.errorMsg()));
}

void CTradeClient::Private::stop() {
  theCounter.stop();
  requests.close();
}

void startTradeClient(CTradeClient& client) { CTradeClient::Private::of(client).start(); }
void stopTradeClient(CTradeClient& client) { CTradeClient::Private::of(client).stop(); }

std::unique_ptr<CTradeClient> makeTradeClient(counter::ICounter& counter, std::chrono::milliseconds timeout) {
  return std::make_unique<CTradeClient>(std::make_unique<CTradeClient::Private>(counter, timeout));
}

}  // namespace VN
