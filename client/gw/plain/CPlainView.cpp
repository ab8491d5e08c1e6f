#include "gw/plain/CPlainView.h"

#include "gw/plain/CPlainRows.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>

namespace GW {

CPlainView::CPlainView(const CPlainRows& rows, QWidget* parent) : QTableView(parent), m_rows(rows) {
  setFrameShape(QFrame::NoFrame);
  setMinimumSize(1, 1);  // rather than that the statistics row has no room
  setShowGrid(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setTabKeyNavigation(false);
  setSelectionMode(SingleSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  setHorizontalScrollMode(ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);  // the one of the table stands under the statistics row
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(1);
}

CPlainView::~CPlainView() = default;

QModelIndex CPlainView::nextEditable(int step) const {
  const int columns = m_rows.columnCount();
  const int cells = m_rows.rowCount() * columns;
  const QModelIndex current = currentIndex();
  int place = current.isValid() ? current.row() * columns + current.column() : (step > 0 ? -1 : cells);
  for (place += step; place >= 0 && place < cells; place += step)
    if (m_rows.column(place % columns).isEditable) return m_rows.index(place / columns, place % columns);
  return {};
}

QModelIndex CPlainView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  // These two come from Tab in an editor, and from the focus when no cell is current yet.
  if (action == MoveNext || action == MovePrevious) return nextEditable(action == MoveNext ? 1 : -1);
  return QTableView::moveCursor(action, modifiers);
}

void CPlainView::copy() const {
  QStringList texts;
  for (int column = 0; column < m_rows.columnCount() && currentIndex().isValid(); ++column)
    texts.append(m_rows.index(currentIndex().row(), column).data().toString());
  if (!texts.isEmpty()) QGuiApplication::clipboard()->setText(texts.join(QLatin1Char('\t')));
}

void CPlainView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy))
    copy();
  else
    QTableView::keyPressEvent(event);
}

}  // namespace GW
