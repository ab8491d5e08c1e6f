#pragma once

#include "host_api.h"
#include "vn/CAccount.h"

#include <QList>
#include <QString>

#include <memory>

namespace VN {

/// The user's own settings and accounts. Any thread.
class HOST_API CUserConfig {
 public:
  struct Private;

  explicit CUserConfig(std::unique_ptr<Private> d);
  ~CUserConfig();

  /// The user's accounts in the counter's order; entries may be null.
  QList<CAccountPtr> getAccountDatas() const;
  /// By account key; null when unknown.
  CAccountPtr getAccountData(const QString& accountKey) const;
  /// Called by the trade client when the counter has told its accounts.
  void setAccountDatas(const QList<CAccountPtr>& accounts);

  /// The client variant that the user runs; repay priorities and renewals exist in 90, 91, 100, 101 and 301.
  int variantCode() const;
  /// Counter type that the user's own settings name; not that of an account.
  int counterType() const;

 private:
  std::unique_ptr<Private> m_d;
};

/// Settings of the client. Any thread.
class HOST_API CConfig {
 public:
  struct Private;

  explicit CConfig(std::unique_ptr<Private> d);
  ~CConfig();

  /// Seconds for which a manual refresh locks the refresh button; 0 to 3600.
  int getQueryCompacInterval() const;

 private:
  std::unique_ptr<Private> m_d;
};

/// Entry to the settings. Any thread.
class HOST_API CUserManager {
 public:
  /// The running client's; null when no client runs.
  static CUserConfig* getUserConfig();
};

/// The same as `CUserManager::getUserConfig`.
HOST_API CUserConfig* getUserConfig();
/// The running client's; null when no client runs.
HOST_API CConfig* getConfig();

}  // namespace VN
