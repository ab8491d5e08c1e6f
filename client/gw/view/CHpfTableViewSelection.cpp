// Selected rows and the current cell.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"

#include <QPointer>

#include <algorithm>

namespace GW {

bool CHpfTableView::isSelected(int slot) const { return m_d->selection.isSelected(slot); }
std::vector<int> CHpfTableView::selectedRows() const { return m_d->selection.rows(); }
int CHpfTableView::selectedCount() const { return m_d->selection.count(); }

void CHpfTableView::selectRows(int first, int last) {
  m_d->selection.select(first, last);
  m_d->selectionDone();
}

void CHpfTableView::addToSelection(int row, bool selected) {
  m_d->selection.add(row, selected);
  m_d->selectionDone();
}

void CHpfTableView::selectAll() {
  m_d->selection.selectAll();
  m_d->selectionDone();
}

void CHpfTableView::clearSelection() {
  m_d->selection.clear();
  m_d->selectionDone();
}

int CHpfTableView::currentRow() const { return m_d->currentRow(); }
int CHpfTableView::currentColumn() const { return m_d->currentColumn; }

void CHpfTableView::setCurrentCell(int row, int columnId) {
  m_d->setCurrent(row, columnId);
  m_d->selectionDone();
}

void CHpfTableView::Private::setCurrent(int row, int columnId) { setCurrentSlot(rows.slotAt(row), columnId); }

void CHpfTableView::Private::setCurrentSlot(int slot, int columnId) {
  const CTableColumn* column = rows.column(columnId);
  selection.setCurrent(slot);
  currentColumn = column == nullptr ? -1 : columnId;
  // A text composed by an input method goes to the editor that it opens.
  q->setAttribute(Qt::WA_InputMethodEnabled, slot >= 0 && column != nullptr && CCellControls::isEditable(*column));
}

bool CHpfTableView::Private::selectionDone() {
  updateLooks();
  const QPointer<CHpfTableView> self(q);
  if (toldRevision != selection.revision()) {
    toldRevision = selection.revision();
    Q_EMIT q->sigSelectionChanged();
    if (self.isNull()) return false;
  }
  if (toldSlot != selection.current() || toldColumn != currentColumn) {
    toldSlot = selection.current();
    toldColumn = currentColumn;
    Q_EMIT q->sigCurrentCellChanged();
  }
  return !self.isNull();
}

std::pair<int, int> CHpfTableView::nextCell(int row, int columnId, bool backwards,
                                            bool (*isWanted)(const CTableColumn&)) const {
  std::vector<int> wanted = shownColumns();
  wanted.erase(std::remove_if(wanted.begin(), wanted.end(), [&](int id) { return !isWanted(*m_d->rows.column(id)); }),
               wanted.end());
  if (wanted.empty()) return {-1, -1};
  const auto position = [this](int id) { return m_d->header->visualIndex(id); };
  // In the row itself it is the first one beyond the cell.
  const int from = m_d->rows.column(columnId) == nullptr ? (backwards ? m_d->header->count() : -1) : position(columnId);
  if (backwards) std::reverse(wanted.begin(), wanted.end());
  const auto beyond = std::find_if(wanted.begin(), wanted.end(),
                                   [&](int id) { return backwards ? position(id) < from : position(id) > from; });
  const bool isInRow = row >= 0 && row < m_d->rows.rowCount() && beyond != wanted.end();
  if (isInRow) return {row, *beyond};
  const int next = backwards ? row - 1 : row + 1;
  if (next < 0 || next >= m_d->rows.rowCount()) return {-1, -1};
  return {next, wanted.front()};
}

QString CHpfTableView::selectedText(bool withTitles) const {
  const std::vector<int> columns = shownColumns();
  QString text;
  const auto addLine = [&](auto textOf) {
    if (!text.isEmpty()) text += QLatin1Char('\n');
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) text += QLatin1Char('\t');
      // A cell must stay one cell in one line wherever the text is pasted.
      for (const QChar one : textOf(columns[i]))
        text += one.category() == QChar::Other_Control ? QLatin1Char(' ') : one;
    }
  };
  if (withTitles) addLine([this](int id) { return m_d->rows.column(id)->title; });
  for (const int row : selectedRows()) {
    const int slot = m_d->rows.slotAt(row);
    addLine([this, slot](int id) { return m_d->rows.text(slot, id); });
  }
  return text;
}

}  // namespace GW
