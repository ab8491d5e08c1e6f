#pragma once

#include "host_api.h"
#include "runtime/CCounterBehaviour.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace counter {
class ICounter;
}

namespace runtime {

struct CClientConfig;

/// A running client: owns every service, each `instance()` answers from it. One at a time in a process. GUI thread.
///
/// Panels and tables are destroyed before it.
class HOST_API CClientRuntime {
 public:
  /// Where the client finds and puts its files; paths are UTF-8.
  struct CPaths {
    std::string configFolder;   ///< broker.toml, counter.toml, rights.toml, user.toml
    std::string database;       ///< the embedded counter's database file; made when absent
    std::string logFile;        ///< empty: no file
    std::string basketFile{};   ///< the user's baskets; empty: they end with the client
    std::string choicesFile{};  ///< what the client remembers of the user's choices; empty: as long as it runs
  };

  /// A client on the embedded counter. Null when a configuration file is wrong; `errors` then says where and what.
  static std::unique_ptr<CClientRuntime> open(const CPaths& paths, std::vector<std::string>& errors);

  /// Reads the configuration files without using them. False when one is wrong; `errors` then says where and what.
  static bool checkConfig(const std::string& folder, std::vector<std::string>& errors);

  /// A client on any counter.
  CClientRuntime(const CClientConfig& config, std::unique_ptr<counter::ICounter> counter, const std::string& logFile);

  /// Stops.
  ~CClientRuntime();
  CClientRuntime(const CClientRuntime&) = delete;
  CClientRuntime& operator=(const CClientRuntime&) = delete;

  /// Connects to the counter: accounts and instruments arrive, then the log-ins.
  void start();
  /// Ends counter, requests, strands, in this order. Idempotent.
  void stop();

  /// What a book holds, after it has replaced the database's contents; or every error, and the database as it was.
  struct CLoadedBook {
    bool loaded = false;
    std::string summary;    ///< "accounts 7, instruments 120, ..."
    std::string errorText;  ///< one line each, file:line:column: what is wrong and what was expected
  };
  /// Loads a folder of CSV files into a counter database. Any thread; takes seconds for a large book. When `giveUp`
  /// becomes true it ends soon, and the database is as it was.
  static CLoadedBook loadBook(const std::string& folder, const std::string& database, const std::atomic<bool>& giveUp);

  // The broker's side: on another than the embedded counter these do nothing.
  /// At first as counter.toml has it.
  CCounterBehaviour counterBehaviour() const;
  /// For requests from now on. Milliseconds.
  void setCounterLatency(int milliseconds);
  /// Every so many requests, counted from now on, one fails, or is not answered at all; 0 never.
  void setCounterFailEvery(int requests);
  void setCounterSilentEvery(int requests);
  /// For orders from now on. Milliseconds.
  void setCounterFillDelay(int milliseconds);
  /// So many quotes move at each interval (milliseconds, above 0) from now on; 0 none.
  void setCounterQuoteWalk(int quotesPerMove, int intervalMs);
  /// Changes some of the account's compacts at the counter, which pushes them.
  void changeSomeCompacts(const std::string& accountKey, int count);
  /// Closes the account's first unclosed compacts at the counter today, which pushes them, owing nothing, and the
  /// closed ones.
  void closeSomeCompacts(const std::string& accountKey, int count);

  /// Colours of the whole application, at first as user.toml has them. GUI thread.
  static void setDarkTheme(bool dark);
  static bool isDarkTheme();

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace runtime
