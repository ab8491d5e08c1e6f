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
#include <optional>

namespace VN {

/// How messages of one kind are shown besides standing among the messages.
struct CMsgSetting {
  bool isPopup = false;  ///< in a window of their own
  bool hasSound = false;
};

/// The layout of one table of one panel, as `IBaseTable::saveConfigStr` gives it.
struct CTableConfigInfo {
  std::string panelId;
  int tableId = 0;
  QString config;
};

/// The user's own settings, accounts and baskets. Any thread, but for the baskets and what the client remembers: those
/// are the GUI thread's.
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

  /// Kinds: 0 repay priorities, 1 renewals; others are shown plainly.
  CMsgSetting getMsgSetting(int kind) const;

  // What the client remembers of the user's choices, kept in a file over its runs.
  /// Order panels serve several accounts at once; false at first.
  bool isCompactMode() const;
  void setCompactMode(bool compact);
  /// Whether the user is asked before an order of the account leaves; true at first.
  bool isOrderConfirmed(const std::string& accountKey) const;
  void setOrderConfirmed(const std::string& accountKey, bool confirmed);
  /// Folder in which file dialogs begin; empty at first.
  QString fileFolder() const;
  void setFileFolder(const QString& folder);
  /// Called on the GUI thread after one of these has changed.
  [[nodiscard]] utils::CSubscriptionPtr subscribeChoices(std::function<void()> callback);

  // Layouts of tables, remembered in the same file; subscribers are not told.
  /// Fills in the layout that was saved last for the panel and table; false, and nothing changed, when there is none.
  bool getTableSetting(CTableConfigInfo& info) const;
  void saveTableSetting(const CTableConfigInfo& info);

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
  /// Saves and returns what `saveBaskets` does; without value, and nothing done, when there is none of that name.
  std::optional<QString> removeBasketSetting(const QString& name);
  /// The same; also without value when the other name is taken.
  std::optional<QString> renameBasketSetting(const QString& from, const QString& to);
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
