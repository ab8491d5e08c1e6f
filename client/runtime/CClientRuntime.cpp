#include "runtime/CClientRuntime.h"

#include "counter/CBookLoader.h"
#include "counter/CSqlCounter.h"
#include "gw/ui_resources.h"
#include "luawrapper/lua_factory.h"
#include "net/engine_factory.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/meta_types.h"
#include "runtime/CClientConfig.h"
#include "utils/log_factory.h"
#include "vn/trade_client_factory.h"

#include <QDate>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

namespace runtime {

namespace {

unsigned workerThreads() { return std::clamp(std::thread::hardware_concurrency(), 2U, 8U); }

}  // namespace

/// Members stand in the order in which they are made; they are destroyed in the opposite one.
struct CClientRuntime::Private {
  std::unique_ptr<utils::CLogCenter> log;
  std::unique_ptr<luawrapper::LuaModuleCtrl> rights;
  std::unique_ptr<rdservice::ConfigCollector> broker;
  std::unique_ptr<VN::CUserConfig> user;
  std::unique_ptr<VN::CConfig> config;
  std::unique_ptr<net::RPCEngine> engine;
  std::unique_ptr<rdservice::TraderCenter> trader;
  std::unique_ptr<counter::ICounter> theCounter;
  counter::CSqlCounter* sqlCounter = nullptr;  ///< `theCounter`, when it is the embedded one
  CCounterBehaviour behaviour;
  std::unique_ptr<VN::CTradeClient> client;
};

CClientRuntime::CClientRuntime(const CClientConfig& config, std::unique_ptr<counter::ICounter> theCounter,
                               const std::string& logFile)
    : m_d(std::make_unique<Private>()) {
  rdservice::registerMetaTypes();
  setDarkTheme(config.user.darkTheme);
  utils::CLogOptions log;
  log.filePath = logFile;
  m_d->log = utils::makeLogCenter(log);
  m_d->rights = luawrapper::makeLuaModuleCtrl(config.rights);
  m_d->broker = rdservice::makeConfigCollector(config.broker);
  m_d->user = VN::makeUserConfig(config.user, config.basketFile, config.choicesFile);
  m_d->config = VN::makeConfig(config.user);
  m_d->engine = net::makeRPCEngine(workerThreads());
  m_d->trader = rdservice::makeTraderCenter();
  m_d->sqlCounter = dynamic_cast<counter::CSqlCounter*>(theCounter.get());
  m_d->theCounter = std::move(theCounter);
  m_d->behaviour = config.counter.behaviour;
  m_d->client = VN::makeTradeClient(*m_d->theCounter, std::chrono::milliseconds(config.counter.requestTimeoutMs));
}

CClientRuntime::~CClientRuntime() { stop(); }

std::unique_ptr<CClientRuntime> CClientRuntime::open(const CPaths& paths, std::vector<std::string>& errors) {
  std::vector<utils::CConfigError> found;
  CClientConfig config = readClientConfig(paths.configFolder, found);
  for (const utils::CConfigError& error : found) errors.push_back(error.text());
  if (!found.empty()) return nullptr;
  config.basketFile = paths.basketFile;
  config.choicesFile = paths.choicesFile;
  counter::CSqlCounterOptions options;
  options.databasePath = paths.database;
  options.latency = std::chrono::milliseconds(config.counter.behaviour.latencyMs);
  options.failEvery = config.counter.behaviour.failEvery;
  options.silentEvery = config.counter.behaviour.silentEvery;
  options.fillDelay = std::chrono::milliseconds(config.counter.behaviour.fillDelayMs);
  options.quotesPerMove = config.counter.behaviour.quotesPerMove;
  options.quoteInterval = std::chrono::milliseconds(config.counter.behaviour.quoteIntervalMs);
  options.maxCompacts = config.counter.maxCompacts;
  options.repeatingTypes = config.counter.repeatingTypes;
  options.renewalRules = config.counter.renewalRules;
  return std::make_unique<CClientRuntime>(config, std::make_unique<counter::CSqlCounter>(options), paths.logFile);
}

bool CClientRuntime::checkConfig(const std::string& folder, std::vector<std::string>& errors) {
  std::vector<utils::CConfigError> found;
  readClientConfig(folder, found);
  for (const utils::CConfigError& error : found) errors.push_back(error.text());
  return found.empty();
}

void CClientRuntime::start() { VN::startTradeClient(*m_d->client); }

void CClientRuntime::stop() {
  VN::stopTradeClient(*m_d->client);
  net::stopEngine(*m_d->engine);
}

CClientRuntime::CLoadedBook CClientRuntime::loadBook(const std::string& folder, const std::string& database,
                                                     const std::atomic<bool>& giveUp) {
  CLoadedBook result;
  const counter::CBookResult book = counter::CBookLoader(folder, QDate::currentDate()).load(database, giveUp);
  result.loaded = book.isLoaded();
  result.errorText = book.errorText();
  for (const counter::CBookCount& count : book.counts)
    result.summary += (result.summary.empty() ? "" : ", ") + count.kind + " " + std::to_string(count.records);
  return result;
}

CCounterBehaviour CClientRuntime::counterBehaviour() const { return m_d->behaviour; }

void CClientRuntime::setCounterLatency(int milliseconds) {
  m_d->behaviour.latencyMs = milliseconds;
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->setLatency(std::chrono::milliseconds(milliseconds));
}

void CClientRuntime::setCounterFailEvery(int requests) {
  m_d->behaviour.failEvery = requests;
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->setFailEvery(requests);
}

void CClientRuntime::setCounterSilentEvery(int requests) {
  m_d->behaviour.silentEvery = requests;
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->setSilentEvery(requests);
}

void CClientRuntime::setCounterFillDelay(int milliseconds) {
  m_d->behaviour.fillDelayMs = milliseconds;
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->setFillDelay(std::chrono::milliseconds(milliseconds));
}

void CClientRuntime::setCounterQuoteWalk(int quotesPerMove, int intervalMs) {
  m_d->behaviour.quotesPerMove = quotesPerMove;
  m_d->behaviour.quoteIntervalMs = intervalMs;
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->setQuoteWalk(quotesPerMove, std::chrono::milliseconds(intervalMs));
}

void CClientRuntime::changeSomeCompacts(const std::string& accountKey, int count) {
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->changeRandomCompacts(accountKey, count, std::random_device()());
}

void CClientRuntime::closeSomeCompacts(const std::string& accountKey, int count) {
  const auto today = static_cast<std::int32_t>(QDate::currentDate().toJulianDay());
  if (m_d->sqlCounter != nullptr) m_d->sqlCounter->closeFirstCompacts(accountKey, count, today);
}

void CClientRuntime::setDarkTheme(bool dark) { GW::setUiTheme(dark ? GW::EUiTheme::Dark : GW::EUiTheme::Light); }

bool CClientRuntime::isDarkTheme() { return GW::uiTheme() == GW::EUiTheme::Dark; }

}  // namespace runtime
