#pragma once

#include "CDeskLayout.h"

#include <QObject>

#include <functional>
#include <vector>

class QMainWindow;

namespace VN {
class ITradeDockableWidget;
}

/// Keeps the window's layout in a file: restores it at the start, writes it some seconds after a change and at the end.
/// A file that is no layout is kept aside, never overwritten. GUI thread.
///
/// What the file says of panels and docks that are not there stays in it, and a panel that is closed leaves its
/// settings for the next one of its type and number.
class CLayoutKeeper : public QObject {
 public:
  /// Tells the user a text.
  using CReport = std::function<void(const QString& text)>;

  /// Reads the file and gives the window its place; nothing is written before `restore`.
  CLayoutKeeper(QMainWindow& window, const QString& path);
  /// Saves. Docks and panels still exist.
  ~CLayoutKeeper() override;

  /// Whether the file was read and is a layout.
  bool hasLayout() const { return m_isRead; }
  /// Whether `restore` was called.
  bool isKeeping() const { return static_cast<bool>(m_report); }
  /// The panels that the layout says were there.
  std::vector<CDeskLayout::CPanelKey> openPanels() const;

  /// Gives docks and panels their places and settings, and keeps them from now on. True when the file had places for
  /// the docks.
  bool restore(std::vector<VN::ITradeDockableWidget*> panels, CReport report);
  /// Gives one more panel the settings that are kept for it, and keeps them from now on.
  void addPanel(VN::ITradeDockableWidget& panel);
  /// The panel goes; its settings are kept as they are now.
  void removePanel(VN::ITradeDockableWidget& panel);
  /// Whether the file that was read has a place for the dock of that object name.
  bool hasPlaceOf(const QString& dockName) const;
  /// Writes the layout unless the file has it already.
  void save();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  void read();
  /// Gives the file another name, under which no file exists yet.
  void keepAside(const QString& why);
  void setParam(VN::ITradeDockableWidget& panel) const;
  QByteArray presentText();

  QMainWindow& m_window;
  const QString m_path;
  bool m_isRead = false;
  QString m_readProblem;
  CDeskLayout m_layout;  ///< as read, then as written last
  std::vector<VN::ITradeDockableWidget*> m_panels;
  CReport m_report;
  bool m_mayWrite = false;
  QByteArray m_written;
  QString m_writeProblem;
};
