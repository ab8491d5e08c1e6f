#pragma once

#include "gw/IEventReceiver.h"
#include "utils/CEventLoopMeter.h"

#include <QMainWindow>

#include <cstdint>
#include <memory>

class CLayoutKeeper;
class CMessageView;
class CPanelDocks;
class QDockWidget;
class QLabel;
class QMenu;

namespace runtime {
class CClientRuntime;
}
namespace VN {
class CCompactsPanel;
}

/// The desk's window: docks the panels beside the broker's side, below them messages, log, positions, orders and
/// baskets. Empty until a client runs.
class CMainWindow : public QMainWindow, public GW::IEventReceiver {
 public:
  /// `layoutFile` keeps where window and docks are; empty: they are where they are at first, and nothing is kept.
  explicit CMainWindow(const QString& layoutFile = QString());
  ~CMainWindow() override;

  /// Text of the status bar.
  void showState(const QString& text);

  /// Docks the panels on a running client, which the window owns from now on, and starts it.
  void startClient(std::unique_ptr<runtime::CClientRuntime> client);

  CPanelDocks& panels() const { return *m_panels; }
  /// The first panel of compacts; null when there is none.
  VN::CCompactsPanel* panel() const;
  runtime::CClientRuntime& client() const { return *m_client; }
  /// Longest time that the event loop did not turn since the panels were docked or `restartMeter`,
  /// milliseconds.
  double longestGap() const { return m_meter.longestGap(); }
  /// Measures anew from now on.
  void restartMeter() { m_meter.reset(); }
  /// Why the counter could not be used; empty while it can.
  const QString& startFailure() const { return m_startFailure; }

  /// What the panels tell their host.
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  QDockWidget* addDock(const QString& name, const QString& title, QWidget* widget, Qt::DockWidgetArea area);
  void addDocks();
  void settleDocks();
  void listenToClient();
  void showPushLoad();

  std::unique_ptr<runtime::CClientRuntime> m_client;  ///< outlives the panels, which the destructor deletes first
  CMessageView* m_messages = nullptr;
  std::unique_ptr<CLayoutKeeper> m_layout;
  std::unique_ptr<CPanelDocks> m_panels;
  QMenu* m_panelMenu = nullptr;
  QMenu* m_viewMenu = nullptr;
  QString m_startFailure;
  QLabel* m_state = nullptr;
  QLabel* m_pushes = nullptr;
  QLabel* m_gap = nullptr;
  std::uint64_t m_foldedPushes = 0;  ///< also of panels that are closed by now
  utils::CEventLoopMeter m_meter{10, nullptr};
};
