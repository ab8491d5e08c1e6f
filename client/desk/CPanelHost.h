#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/rdservice_enums.h"

#include <QObject>
#include <QString>

namespace VN {
class ITradeDockableWidget;
}

/// What the desk does for a docked panel: keeps it told of accounts and log-ins, and asks it for the pushes of the
/// account that it shows. Lives as the panel's child. GUI thread.
class CPanelHost : public QObject {
 public:
  explicit CPanelHost(VN::ITradeDockableWidget* panel);
  ~CPanelHost() override;

 private:
  void onLoginStatus(const rdservice::CAccountInfoPtr& account);
  void requestShownAccount();

  VN::ITradeDockableWidget* m_panel;
  QString m_requested;  ///< account asked for last; one that is still shown is not asked for again
};
