#pragma once

#include "gw/view/CCellControls.h"
#include "gw/view/CHpfTableView.h"
#include "gw/view/CRowSelection.h"
#include "gw/view/CScreenCells.h"
#include "gw/view/CStatisticsRow.h"
#include "gw/view/CTableColors.h"
#include "gw/view/CTableHeader.h"
#include "gw/view/CTextPainter.h"

#include "gw/CUiResource.h"

#include <QBasicTimer>
#include <QPalette>

#include <cstdint>
#include <memory>
#include <vector>

namespace GW {

struct CHpfTableView::Private : CUiResourceChangeHandler {
  /// A shown column within a horizontal range of the viewport.
  struct CColumnPlace {
    int id;
    int x;
    int width;
    const CTableColumn* column;
    bool isControl;
  };

  Private(CHpfTableView* view, CShownRows& theRows);
  ~Private() override;

  void onUiResourceChanged() override;
  void setColors();
  void setFont();

  // --- geometry ---

  void updateGeometries();
  void updateScrollBars();
  int scrollX() const;
  int scrollY() const;
  int lineY(int row) const { return row * rowHeight - scrollY(); }
  /// The whole width of the viewport.
  QRect lineRect(int row) const;
  std::vector<CColumnPlace> columnsBetween(int left, int right) const;
  std::vector<int> columnsOnScreen() const;
  void columnResized(int columnId, int width);
  /// Something happened to columns, from this one on to the right; -1 for all.
  void columnsChanged(int columnId);
  void fitColumn(int columnId);
  void scrolled(int dx, int dy);
  /// False when pixels would be torn: the device scale is no whole number.
  bool canMovePixels() const;

  // --- what the screen shows ---

  bool isSeen() const { return q->isVisible(); }
  CScreenLook lookOf(int row, int slot) const;
  /// Has rows painted again whose selection, current cell or shade is another.
  void updateLooks();
  void updateDirty(const std::vector<CScreenCells::CDirty>& dirty);
  void noteTop();
  void takeRows(const CRowsChange& change);
  void paint(QPainter& painter, const QRegion& region);
  void markCells(const QRegion& region, const std::vector<CColumnPlace>& columns);
  /// By column, whether the row's cell is to be painted.
  const std::uint8_t* marksOf(int row, const std::vector<CColumnPlace>& columns) const {
    return marks.data() + static_cast<std::size_t>(row - markedFirst) * columns.size();
  }
  // The marked cells of the rows from `first` to before `end`.
  void paintBackground(QPainter& painter, const std::vector<CColumnPlace>& columns, int first, int end);
  void paintGrid(QPainter& painter, const std::vector<CColumnPlace>& columns, int first, int end);
  void paintCells(QPainter& painter, const std::vector<CColumnPlace>& columns, int first, int end);
  void paintCurrent(QPainter& painter);

  // --- selection and current cell ---

  int currentRow() const { return rows.rowOf(selection.current()); }
  void setCurrent(int row, int columnId);
  void setCurrentSlot(int slot, int columnId);
  /// Paints and tells what the user or program has changed; false when a receiver has destroyed the view.
  bool selectionDone();

  // --- input ---

  bool isControlAt(int columnId) const;
  /// Whether a control has taken the press, or whoever was told of it has destroyed the view.
  bool pressControl(int row, int columnId, const QPoint& position);
  void pressRow(int row, Qt::KeyboardModifiers modifiers);
  void drag(const QPoint& position);
  void scrollByDrag();
  /// Arrows, pages, Home and End.
  bool moveCurrent(int key, Qt::KeyboardModifiers modifiers);
  int nextColumn(int columnId, int step) const;
  bool toggleCurrent();
  void copy() const;
  bool showToolTip(const QPoint& position, const QPoint& global) const;

  CHpfTableView* q;
  CShownRows& rows;
  CTableColors colors;
  QPalette controlColors;
  CTextPainter texts;
  CTableHeader* header = nullptr;
  CStatisticsRow* sums = nullptr;
  CRowSelection selection;
  CScreenCells screen;
  std::unique_ptr<CCellControls> controls;

  int rowHeight = 1;
  int currentColumn = -1;

  int topRow = -1;            ///< the first row on screen, while rows change
  int topSlot = -1;           ///< its slot; -1 when it is gone
  int topOffset = 0;          ///< pixels of it that are above the viewport
  int topY = 0;               ///< scroll position at that time
  bool isTopNoted = false;    ///< for several changes
  bool isPlacing = false;     ///< the scroll bars follow changed rows: no pixels move
  bool isMovedAside = false;  ///< meanwhile the columns had to move
  bool isLayingOut = false;
  bool areShadesSwapped = false;  ///< even rows are the darker ones

  bool isDragging = false;
  bool dragKeepsOthers = false;
  QPoint dragPosition;
  QBasicTimer dragTimer;

  std::uint64_t toldRevision = 0;  ///< what the last signals told of
  int toldSlot = -1;
  int toldColumn = -1;

  std::vector<std::uint8_t> marks;  ///< of one paint: by line and column, the cells to be painted
  int markedFirst = 0;              ///< the first marked row
  int markedLast = -1;
};

/// Space left and right of a cell's text, pixels; the grid line stands inside the right one.
constexpr int CELL_PADDING = 5;

inline QRect textRect(const QRect& cell) { return cell.adjusted(CELL_PADDING, 0, -CELL_PADDING - 1, 0); }

}  // namespace GW
