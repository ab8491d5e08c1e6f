#pragma once

#include "gw/table/CShownRows.h"

#include <QObject>

#include <memory>

class QPainter;
class QPalette;

namespace GW {

class CHpfTableView;

/// The check boxes, radio buttons and editors in the cells of a view: how they look, what a click or key does to them,
/// and the one editor that may be open. What the user does goes to the column's delegate, which keeps the state and
/// reports the event; whoever is told may do anything, also destroy the view. GUI thread.
class CCellControls : public QObject {
  Q_OBJECT

 public:
  /// To be destroyed before the view's viewport is; an open editor closes without commit.
  CCellControls(CHpfTableView& view, CShownRows& rows);
  ~CCellControls() override;

  /// Whether the column's cells are painted by `paint` instead of as text.
  static bool isControl(const CTableColumn& column);
  /// Whether the user may type into the column's cells.
  static bool isEditable(const CTableColumn& column);

  /// Background and grid are painted already; the painter has the view's font.
  void paint(QPainter& painter, const QRect& cell, int slot, int columnId, const QPalette& colors) const;

  /// A press of the left button, also the second one of a double click; whether it was a control's. A click on an
  /// editable cell opens its editor; a click anywhere else commits what is open.
  bool press(int slot, int columnId, const QRect& cell, const QPoint& position);
  /// Space: ticks or unticks; whether the cell can.
  bool toggle(int slot, int columnId);
  /// F2 (`typed` empty) or a typed character: opens the cell's editor; whether the cell has one.
  bool edit(int slot, int columnId, const QString& typed);

  bool isEditing() const;
  /// Commits what is open, if anything.
  void finish();
  void cancel();

  /// The view has scrolled, columns or rows have moved: the editor stays with its cell. An editor whose cell is out of
  /// sight stays open.
  void place();
  /// After a change of the rows, with their new slots when they were renumbered. An editor whose row is gone closes;
  /// its text is committed no more.
  void rowsChanged(const CRowsChange& change);

 Q_SIGNALS:
  /// A cell's state was stored, by what the user did or perhaps by whoever was told of it, and waits to be shown.
  void sigStored();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
