#pragma once

#include <QObject>
#include <QString>

#include <vector>

class CLayoutKeeper;
class QDockWidget;
class QMainWindow;
class QMenu;

namespace VN {
class CCompactsPanel;
class ITradeDockableWidget;
}  // namespace VN

/// The window's panels, any number of each kind, each in a dock of its own. Closing a dock destroys its panel. GUI
/// thread, while a client runs.
///
/// A panel has a number from 1, which no other one has at that time: the lowest free one. It is the panel's id and ends
/// the name of its dock.
class CPanelDocks : public QObject {
 public:
  /// What is known of a panel that is open.
  struct CPanel {
    int number;
    VN::ITradeDockableWidget* panel;
    QDockWidget* dock;
  };

  /// `keeper`, which may be null, keeps the settings of the panels; it is there as long as a dock can be closed.
  CPanelDocks(QMainWindow& window, CLayoutKeeper* keeper);
  ~CPanelDocks() override;

  /// Opens the panels that the kept layout names, without their settings; one of compacts when there is no layout.
  void openKept();
  /// Opens one more in front of the others. Null for an unknown type key, and when the numbers are used up.
  VN::ITradeDockableWidget* open(const QString& typeKey);
  /// Puts a dock beside the panels that are there, for one that the layout had no place for.
  void place(QDockWidget* dock);

  /// In order of their numbers.
  const std::vector<CPanel>& panels() const { return m_panels; }
  std::vector<VN::ITradeDockableWidget*> widgets() const;
  /// The one with the lowest number; null when there is none.
  VN::CCompactsPanel* firstCompacts() const;

  /// Adds what opens panels to the menu, and, whenever it is shown, what brings one of them to the front.
  void fillMenu(QMenu& menu);
  /// Tells every panel, also those inside others, whether order panels serve several accounts.
  void tellCompactMode() const;

 private:
  struct CKind;
  static const CKind KINDS[];

  static const CKind* kindOf(const QString& typeKey);
  bool isFree(int number) const;
  CPanel& add(const CKind& kind, int number);
  void close(int number);
  void listPanels(QMenu& menu);

  QMainWindow& m_window;
  CLayoutKeeper* m_keeper;
  std::vector<CPanel> m_panels;
};
