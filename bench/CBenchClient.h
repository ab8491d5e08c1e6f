#pragma once

#include "compacts/CCompactsPanel.h"
#include "runtime/CClientRuntime.h"

#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace counter {
class ICounter;
}
namespace VN {
class CCompactsTable;
}

/// A client on the embedded counter with a large generated account, and the panel on it, shown.
class CBenchClient {
 public:
  struct COptions {
    std::int64_t compacts = 0;
    std::int64_t closed = 0;
    bool isPaged = false;
    /// Puts another counter in the place of the embedded one, which it may own and ask; null: the embedded one.
    std::function<std::unique_ptr<counter::ICounter>(std::unique_ptr<counter::ICounter> embedded)> replace{};
  };

  explicit CBenchClient(const COptions& options);
  ~CBenchClient();

  /// Why it cannot be used; empty when it can.
  const std::string& error() const { return m_error; }
  runtime::CClientRuntime& client() const { return *m_client; }
  VN::CCompactsPanel& panel() const { return *m_panel; }
  /// The counter's file.
  std::string database() const { return m_folder.path().toStdString() + "/counter.db"; }
  /// Key of the large account, which the panel shows.
  static const char* account();

  /// Processes events until `isDone` says so, looking at least every so often; false after a minute.
  static bool wait(const std::function<bool()>& isDone);
  /// Milliseconds of processor time that this process has used.
  static double processorMs();
  /// Whether every row is as the data centre holds it, and no compact of the account is missing.
  static bool isSameAsStored(const VN::CCompactsTable& table);

 private:
  std::string open(const COptions& options);
  std::string showAccount();

  QTemporaryDir m_folder;
  std::string m_error;
  std::unique_ptr<runtime::CClientRuntime> m_client;
  std::unique_ptr<VN::CCompactsPanel> m_panel;
};
