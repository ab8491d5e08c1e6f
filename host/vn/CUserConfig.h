#pragma once

#include "host_api.h"
#include "utils/CSubscription.h"
#include "vn/CAccount.h"
#include "vn/CBasketSetting.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace VN {

/// The user's own settings, accounts and baskets. Any thread, but for the baskets: those are the GUI thread's.
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

  // The user's baskets, kept in a file over the client's runs.
  using CBasketPtr = std::shared_ptr<CBasketSetting>;
  /// The basket of that name for changing, never null. For a new name it is one that has no name yet; it is kept as
  /// soon as its name has been set. Changes are written by `saveBaskets`.
  CBasketPtr getBasketSettingNoCreate(const QString& name);
  /// Those with a name, in the order in which they came.
  QList<CBasketPtr> getBasketSettings();
  /// Writes the baskets, as a whole or not at all, and tells the subscribers. Returns why they could not be written,
  /// for users, also logged as an error; empty when they were.
  QString saveBaskets();
  /// False when there is none of that name. Saves.
  bool removeBasketSetting(const QString& name);
  /// False when there is none of that name or the other one is taken. Saves.
  bool renameBasketSetting(const QString& from, const QString& to);
  /// Called on the GUI thread after the baskets have changed.
  [[nodiscard]] utils::CSubscriptionPtr subscribeBaskets(std::function<void()> callback);

  /// What users must know about how the client found its files when it started, such as a damaged basket file.
  QStringList startMessages() const;

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
