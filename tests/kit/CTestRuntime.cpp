#include "kit/CTestRuntime.h"

#include "luawrapper/LuaModuleCtrl.h"
#include "net/RPCEngine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <future>

namespace kit {

namespace {

constexpr int WAIT_MS = 10000;
constexpr const char* STRAND_NAME = "hpfmodel";

rdservice::CAccountInfoPtr makeAccount(const char* id, int brokerType, int counterType, const char* name) {
  const auto account = boost::make_shared<rdservice::CAccountInfo>();
  account->accountId = id;
  account->brokerType = brokerType;
  account->counterType = counterType;
  account->name = name;
  return account;
}

std::vector<rdservice::CInstrumentInfoPtr> testInstruments() {
  std::vector<rdservice::CInstrumentInfoPtr> instruments;
  for (const auto& [exchange, code, name] :
       {std::make_tuple("SH", "600000", "浦发银行"), std::make_tuple("SZ", "000001", "平安银行")}) {
    const auto instrument = boost::make_shared<rdservice::CInstrumentInfo>();
    instrument->exchangeId = exchange;
    instrument->code = code;
    instrument->name = name;
    instruments.push_back(instrument);
  }
  return instruments;
}

/// Runs everything that stands on the strand now.
void drainStrand() {
  QEventLoop loop;
  bool passed = false;
  QTimer::singleShot(WAIT_MS, &loop, &QEventLoop::quit);
  net::RPCEngine::instance()->getStrand(STRAND_NAME)->post([&loop, &passed] {
    QMetaObject::invokeMethod(
        &loop,
        [&loop, &passed] {
          passed = true;
          loop.quit();
        },
        Qt::QueuedConnection);
  });
  loop.exec();
  ASSERT_TRUE(passed) << "the strand is stuck";
}

}  // namespace

runtime::CClientConfig testConfig() {
  runtime::CClientConfig config;
  config.broker.counterTypes[90] = {};
  config.broker.counterTypes[102].repeatsRecords = true;
  config.user.variantCode = 100;
  config.user.counterType = 100;
  config.user.queryCompactInterval = 0;
  config.rights[luawrapper::LuaModuleCtrl::Order] = {"mdl_order_credit_compact_change_detail",
                                                     "mdl_order_compact_renewal_apply", "mdl_order_credit_priority"};
  return config;
}

std::vector<rdservice::CAccountInfoPtr> testAccounts() {
  return {makeAccount("1001", rdservice::BrokerTypeCredit, 90, "张三"),
          makeAccount("1002", rdservice::BrokerTypeCredit, 102, "李四"),
          makeAccount("1003", rdservice::BrokerTypeCreditInstitution, 90, "机构"),
          makeAccount("2001", rdservice::BrokerTypeStock, 90, "王五")};
}

CTestRuntime::CTestRuntime(const runtime::CClientConfig& config) {
  auto scripted = std::make_unique<CScriptedCounter>(testAccounts(), testInstruments());
  m_counter = scripted.get();
  m_runtime = std::make_unique<runtime::CClientRuntime>(config, std::move(scripted), std::string());
  listen();
  m_runtime->start();
  settle();
}

CTestRuntime::CTestRuntime(const runtime::CClientConfig& config, std::unique_ptr<counter::ICounter> counter)
    : m_runtime(std::make_unique<runtime::CClientRuntime>(config, std::move(counter), std::string())) {
  listen();
}

CTestRuntime::~CTestRuntime() {
  m_runtime->stop();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  const QWidgetList left = QApplication::topLevelWidgets();
  for (const QWidget* widget : left) ADD_FAILURE() << "left over: " << widget->metaObject()->className();
  EXPECT_LE(m_meter.longestGap(), m_gapLimit) << "the event loop stood still";
  m_listener.reset();
  const utils::CMutexLock lock(m_logMutex);
  for (const utils::CLogLine& line : m_log) {
    const bool expected = std::any_of(m_expectedErrors.begin(), m_expectedErrors.end(), [&](const std::string& text) {
      return line.message.find(text) != std::string::npos;
    });
    if (line.level >= utils::LogError && !expected) ADD_FAILURE() << "unexpected error line: " << line.message;
  }
}

void CTestRuntime::listen() {
  m_listener = utils::CLogCenter::instance()->addListener([this](const utils::CLogLine& line) {
    const utils::CMutexLock lock(m_logMutex);
    m_log.push_back(line);
  });
}

std::vector<utils::CLogLine> CTestRuntime::logged(const std::string& text) const {
  std::vector<utils::CLogLine> found;
  const utils::CMutexLock lock(m_logMutex);
  for (const utils::CLogLine& line : m_log)
    if (line.message.find(text) != std::string::npos) found.push_back(line);
  return found;
}

void CTestRuntime::settle() { settle(true); }
void CTestRuntime::settleWithoutStrand() { settle(false); }

void CTestRuntime::settle(bool withStrand) {
  // A counter call may post to the strand, a strand task or a GUI event may send a request; each round follows one
  // such step, and two quiet rounds leave nothing that could still come.
  for (int quiet = 0; quiet < 2;) {
    const std::uint64_t before = m_counter->activity();
    m_counter->waitIdle();
    if (withStrand) drainStrand();
    if (testing::Test::HasFatalFailure()) return;
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    quiet = m_counter->activity() == before ? quiet + 1 : 0;
  }
}

bool waitUntil(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, WAIT_MS); }

struct CStrandLatch::CState {
  std::promise<void> open;
  std::promise<void> held;
  bool released = false;
};

CStrandLatch::CStrandLatch() : m_state(std::make_shared<CState>()) {
  net::RPCEngine::instance()->getStrand(STRAND_NAME)->post([state = m_state] {
    state->held.set_value();
    state->open.get_future().wait();
  });
  m_state->held.get_future().wait();
}

CStrandLatch::~CStrandLatch() { release(); }

void CStrandLatch::release() {
  if (m_state->released) return;
  m_state->released = true;
  m_state->open.set_value();
}

}  // namespace kit
