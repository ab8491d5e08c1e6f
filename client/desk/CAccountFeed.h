#pragma once

#include "rdservice/IData.h"
#include "utils/CSubscription.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace VN {
class CHpfDataTable;
}

/// Fills a table with what the data centre holds of its record type for every account that is logged in, and shows it
/// while the table is visible. A member of its table, behind all that `write` uses. GUI thread; needs a running client.
class CAccountFeed : public QObject {
 public:
  /// Hands records to the table. Called on the thread that stores them, also at the same time for several accounts.
  using CWrite = std::function<void(const std::vector<rdservice::IDataPtr>& records)>;

  CAccountFeed(VN::CHpfDataTable& table, CWrite write);
  /// When it returns, no `write` is running and none comes later.
  ~CAccountFeed() override;

 private:
  void followLogins();
  void begin(const std::string& accountKey);
  void end(const std::string& accountKey);

  VN::CHpfDataTable& m_table;
  const CWrite m_write;
  QTimer m_refresh;
  std::map<std::string, utils::CSubscriptionPtr> m_accounts;  ///< by account key, those logged in
};
