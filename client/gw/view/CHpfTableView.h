#pragma once

#include "gw/table/CShownRows.h"

#include <QAbstractScrollArea>

#include <memory>
#include <utility>
#include <vector>

class QHeaderView;

namespace GW {

class CCellControls;

/// The view of a table: rows of one height, painted by itself under a header. Only what is on screen is formatted, and
/// only what has changed is painted again. Selection, current cell and scroll position stay on their records. GUI
/// thread.
class CHpfTableView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  /// `rows` outlives the view. Columns that it has already are taken over.
  CHpfTableView(CShownRows& rows, QWidget* parent);
  ~CHpfTableView() override;

  CShownRows& rows() const;

  // --- told by the owner ---

  void columnAdded(int columnId);
  /// Title, delegate or alignment is another.
  void columnChanged(int columnId);
  /// Several changes follow at once: the record at the top of the screen now is the one that keeps its place.
  void changesBegin();
  void changesEnd();
  void rowsAboutToChange(const CRowsChange& change);
  void rowsChanged(const CRowsChange& change);
  /// Sort marks, filter marks and sums follow the rows' present ones.
  void updateMarks();

  // --- columns ---

  /// Its logical indexes are column ids, its visual ones positions.
  QHeaderView* header() const;
  /// The width at which the header shows its whole title beside its marks.
  int headerWidth(int columnId) const;
  /// The width for a cell text.
  int textWidth(const QString& text) const;
  /// The width at which header, sum and the cells on screen are not cut; also for a hidden column.
  int fittingWidth(int columnId) const;
  /// Whether the user may drag the column elsewhere; true unless set.
  void setColumnMovable(int columnId, bool movable);
  /// Column ids that are not hidden, from the left.
  std::vector<int> shownColumns() const;
  void setHeaderCheckBoxVisible(int columnId, bool visible);
  void setHeaderCheckBoxState(int columnId, bool checked);
  bool headerCheckBoxState(int columnId) const;

  // --- geometry, in viewport coordinates ---

  int rowHeight() const;
  /// May lie outside the viewport; null for a hidden column or a row that does not exist.
  QRect cellRect(int row, int columnId) const;
  /// -1 where there is no row or column.
  int rowAt(int y) const;
  int columnAt(int x) const;
  /// The first and last row on screen; -1 and -1 when there is none.
  std::pair<int, int> visibleRows() const;
  /// Scrolls as little as needed; the column may be -1.
  void scrollToCell(int row, int columnId);

  // --- selection and current cell ---

  bool isSelected(int slot) const;
  /// Displayed rows, rising.
  std::vector<int> selectedRows() const;
  int selectedCount() const;
  void selectRows(int first, int last);
  void addToSelection(int row, bool selected);
  void selectAll();
  void clearSelection();
  /// -1 when there is none.
  int currentRow() const;
  int currentColumn() const;
  /// Does not change the selection.
  void setCurrentCell(int row, int columnId);
  /// The displayed row's cell below or above, in reading order, that `isWanted` accepts; (-1, -1) when there is none.
  /// Used for Tab between editable cells.
  std::pair<int, int> nextCell(int row, int columnId, bool backwards, bool (*isWanted)(const CTableColumn&)) const;

  /// The selected rows as the columns show them, tab separated; with the titles first when `withTitles`.
  QString selectedText(bool withTitles) const;

  // --- painting ---

  void updateCell(int slot, int columnId);
  void updateColumn(int columnId);

  CCellControls& controls() const;

 Q_SIGNALS:
  /// The user clicked on a column's title; with `extend` (Shift) the column joins those sorted by already.
  void sigSortRequested(int columnId, bool extend);
  /// The user clicked on a column's filter mark; the section's place is in global coordinates.
  void sigFilterRequested(int columnId, const QRect& section);
  /// The user clicked on a header's check box, which shows the new state already.
  void sigHeaderCheckBoxClicked(int columnId, bool checked);
  void sigRowDoubleClicked(int row);
  /// At a place in viewport coordinates.
  void sigMenuRequested(const QPoint& position);
  void sigFindRequested();
  void sigSelectionChanged();
  void sigCurrentCellChanged();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
