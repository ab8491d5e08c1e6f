#pragma once

#include "kit/CScriptedCounter.h"
#include "runtime/CClientConfig.h"
#include "runtime/CClientRuntime.h"
#include "utils/CEventLoopMeter.h"
#include "utils/CLogCenter.h"

#include <QTemporaryDir>

#include <functional>
#include <string>
#include <vector>

namespace kit {

/// The configuration that a test starts from: compacts queried by type, no paging, every right, client variant 100,
/// counter types 90 (plain) and 102 (repeats records), no refresh lock.
runtime::CClientConfig testConfig();

/// Two credit accounts ("3.1001" on counter type 90, "3.1002" on 102), one institution's ("11.1003"), one stock
/// account.
std::vector<rdservice::CAccountInfoPtr> testAccounts();

/// A fresh client for one test case, on a scripted counter or another. At its end the case fails on an error line
/// that was not expected, on a top-level widget that is still there, and on an event loop that stood still too long.
class CTestRuntime {
 public:
  /// On a scripted counter with `testAccounts`; started, accounts logged in, settled.
  explicit CTestRuntime(const runtime::CClientConfig& config = testConfig());
  /// On another counter; not started.
  CTestRuntime(const runtime::CClientConfig& config, std::unique_ptr<counter::ICounter> counter);
  ~CTestRuntime();

  CScriptedCounter& counter() const { return *m_counter; }
  runtime::CClientRuntime& client() { return *m_runtime; }
  QString path(const QString& name) const { return m_folder.filePath(name); }

  /// Log lines so far that contain `text`.
  std::vector<utils::CLogLine> logged(const std::string& text) const;
  /// Error lines that contain `text` are part of the test.
  void expectError(const std::string& text) { m_expectedErrors.push_back(text); }
  /// Longest time the event loop may stand still, milliseconds.
  void setGapLimit(double milliseconds) { m_gapLimit = milliseconds; }

  /// Lets everything that is under way come to rest: counter calls, strand tasks, GUI events.
  void settle();
  /// The same without the strand, which may be held.
  void settleWithoutStrand();

 private:
  void settle(bool withStrand);
  void listen();

  QTemporaryDir m_folder;
  CScriptedCounter* m_counter = nullptr;
  std::unique_ptr<runtime::CClientRuntime> m_runtime;
  mutable utils::CMutex m_logMutex;
  std::vector<utils::CLogLine> m_log TS_GUARDED_BY(m_logMutex);
  utils::CSubscriptionPtr m_listener;
  std::vector<std::string> m_expectedErrors;
  utils::CEventLoopMeter m_meter{10, nullptr};
  double m_gapLimit = 5000;
};

/// Processes events until `condition` holds; false after ten seconds.
bool waitUntil(const std::function<bool()>& condition);

/// Holds the strand "hpfmodel": tasks posted meanwhile wait. Released by `release` or the end of the scope.
class CStrandLatch {
 public:
  CStrandLatch();
  ~CStrandLatch();
  void release();

 private:
  struct CState;
  std::shared_ptr<CState> m_state;
};

}  // namespace kit
