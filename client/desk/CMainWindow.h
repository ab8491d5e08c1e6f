#pragma once

#include "utils/CEventLoopMeter.h"

#include <QMainWindow>

#include <memory>

class CLayoutKeeper;
class CMessageView;
class QDockWidget;
class QLabel;
class QMenu;

namespace runtime {
class CClientRuntime;
}
namespace VN {
class CCompactsPanel;
}

/// The desk's window: docks the compacts panel beside the broker's side, below them messages, log, positions, orders
/// and baskets. Empty until a client runs.
class CMainWindow : public QMainWindow {
 public:
  /// `layoutFile` keeps where window and docks are; empty: they are where they are at first, and nothing is kept.
  explicit CMainWindow(const QString& layoutFile = QString());
  ~CMainWindow() override;

  /// Text of the status bar.
  void showState(const QString& text);

  /// Docks the panels on a running client, which the window owns from now on, and starts it.
  void startClient(std::unique_ptr<runtime::CClientRuntime> client);

  VN::CCompactsPanel* panel() const { return m_panel; }
  runtime::CClientRuntime& client() const { return *m_client; }
  /// Longest time that the event loop did not turn since the panels were docked or `restartMeter`,
  /// milliseconds.
  double longestGap() const { return m_meter.longestGap(); }
  /// Measures anew from now on.
  void restartMeter() { m_meter.reset(); }
  /// Why the counter could not be used; empty while it can.
  const QString& startFailure() const { return m_startFailure; }

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  QDockWidget* addDock(const QString& name, const QString& title, QWidget* widget, Qt::DockWidgetArea area);
  void addDocks();
  void settleDocks();
  void listenToClient();

  std::unique_ptr<runtime::CClientRuntime> m_client;  ///< outlives the panels, which the destructor deletes first
  VN::CCompactsPanel* m_panel = nullptr;
  CMessageView* m_messages = nullptr;
  std::unique_ptr<CLayoutKeeper> m_layout;
  QMenu* m_viewMenu = nullptr;
  QString m_startFailure;
  QLabel* m_state = nullptr;
  QLabel* m_gap = nullptr;
  utils::CEventLoopMeter m_meter{10, nullptr};
};
