#pragma once

#include "gw/table/CShownRows.h"

#include <QFrame>
#include <QPointer>

class QLabel;
class QLineEdit;

namespace GW {

class CHpfTableView;
class CSlicedTask;

/// The bar under a view that looks for a text in the cells shown. It opens when the view asks for it; F3 works in the
/// view too while it is open. It looks in slices and goes on from the record where it was when rows move. GUI thread.
class CFindBar : public QFrame {
  Q_OBJECT

 public:
  /// Hidden at first. The bar may outlive the view.
  CFindBar(CHpfTableView& view, QWidget* parent);
  ~CFindBar() override;

  void open();
  void findNext();
  void findPrevious();
  bool isSearching() const;
  /// Told by the owner after a change.
  void rowsChanged(const CRowsChange& change);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void closeBar();
  /// From the current row on, or from the one after it.
  void start(bool backwards, bool withCurrent);
  bool examineNext();
  int findColumn(int slot) const;

  QPointer<CHpfTableView> m_view;
  CShownRows& m_rows;
  QLineEdit* m_text;
  QLabel* m_state;
  CSlicedTask* m_task;

  QString m_wanted;
  int m_step = 1;  ///< -1 upwards
  int m_row = -1;  ///< looked at last, and its slot
  int m_slot = -1;
  int m_left = 0;  ///< rows still to be looked at
  int m_laps = 0;  ///< begun because rows had moved
};

}  // namespace GW
