#pragma once

#include "gw/IDockableWidget.h"
#include "host_api.h"
#include "rdservice/CAccountInfo.h"

#include <QSize>
#include <QString>

#include <memory>
#include <string>

namespace VN {

/// How a host docks panels of one type.
struct CDockWidgetInfo {
  QString typeKey;
  QString title;
  QSize size;  ///< preferred size, pixels at 100 %
};

/// Implemented by a host's widget that has panels inside it and knows which accounts they serve. GUI thread.
class HOST_API IAccountDemand {
 public:
  IAccountDemand();
  virtual ~IAccountDemand();

  /// Whether the panels inside shall serve that account.
  virtual bool needsAccount(const std::string& accountKey) const = 0;
};

/// Base of the panels that a trading client docks. GUI thread.
class HOST_API ITradeDockableWidget : public GW::IDockableWidget {
 public:
  ITradeDockableWidget(const QString& typeKey, int panelId, const CDockWidgetInfo& info, QWidget* parent);
  ~ITradeDockableWidget() override;

  /// The client's docking information for a panel type; only the key is set for an unknown one.
  static CDockWidgetInfo getDockWidgetInfo(const QString& typeKey);

  const QString& typeKey() const;
  /// The panel's number as text.
  const std::string& panelId() const;
  const CDockWidgetInfo& dockInfo() const;

  /// Whether the panel still has to ask for that account's data: the account can answer, and the nearest
  /// `IAccountDemand` among the panel's parents, if there is one, wants it.
  bool needRequestAccount(const std::string& accountKey) const;

  /// The host wants this account shown. Default: nothing.
  virtual void requestAccount(const rdservice::CAccountInfo& account);
  /// The user's accounts changed. Default: nothing.
  virtual void refreshAccounts();
  /// Empties the panel. Default: nothing.
  virtual void clear();
  /// Fits the column widths. Default: nothing.
  virtual void adjustTableWidth();

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
