#pragma once

#include "gw/table/CShownRows.h"

#include <QFrame>
#include <QTimer>

#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QRect;

namespace GW {

class CFilterValues;
class IFilterSource;

/// The pop-up under a header section with the column's values to choose from: a type-ahead, a box for all that it
/// shows, and the values with their numbers of rows. Rows may come, go and move meanwhile: the values remain those of
/// the time of opening until rows are dropped, then they follow, and ticks stay on their values. A child of the view,
/// it goes with it; closed, it deletes itself. GUI thread.
class CFilterMenu : public QFrame {
  Q_OBJECT

 public:
  /// `rows` outlives the view.
  CFilterMenu(CShownRows& rows, int columnId, QWidget* view);
  CFilterMenu(std::unique_ptr<IFilterSource> source, int columnId, QWidget* view);
  ~CFilterMenu() override;

  /// Under the section (global coordinates), or above it when there is no room.
  void popup(const QRect& section);
  /// Told by the owner after a change. When the column itself changes, the owner closes the menu.
  void rowsChanged(const CRowsChange& change);

  int columnId() const { return m_columnId; }

 Q_SIGNALS:
  /// The user has set or removed the column's filter.
  void sigFilterChanged(int columnId);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void addWidgets();
  void setBoxColors();
  void showState();
  void reload();
  void accept();

  const int m_columnId;
  CFilterValues* m_values;
  QLineEdit* m_text;
  QCheckBox* m_all;
  QLabel* m_state;
  QListView* m_list;
  QPushButton* m_ok;
  QPushButton* m_cancel;
  QTimer m_reload;
  bool m_hasDropped = false;        ///< rows, since the menu was opened
  bool m_acceptsWhenFound = false;  ///< accepted while the type-ahead was still looking
};

}  // namespace GW
