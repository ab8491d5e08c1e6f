// Sums of the displayed rows. Those of every row follow each change at once. Those of the rows that pass a filter are
// made anew when the filter changes: a few rows at once, of many a part whenever somebody has time.

#include "gw/table/CShownRows.h"
#include "gw/table/CShownRowsPrivate.h"

#include <algorithm>

namespace GW {

namespace {

constexpr const char* SUM_TO_COME = "…";

std::size_t at(int index) { return static_cast<std::size_t>(index); }

}  // namespace

/// Before the row becomes the drain's.
void CShownRows::Private::sumChangedRow(const CStep& step, const CRowsDrain& drain) {
  const bool isInShownSum = isFiltered() && step.slot < shownSummed;
  for (std::size_t id = 0; id < columns.size(); ++id) {
    CColumn& column = *columns[id];
    if (!column.isSummed) continue;
    const CCell before = cell(column, step.slot);
    const CCell after = cell(static_cast<int>(id), drain, step.index);
    column.allSum.replace(column.column, before, after);
    if (!isInShownSum) continue;
    if (step.wasShown) column.shownSum.subtract(column.column, before);
    if (step.isShown) column.shownSum.add(column.column, after);
  }
}

/// The rows from there on become part of the sums of every row.
void CShownRows::Private::sumNewRows(std::size_t first) {
  for (const auto& column : columns) {
    if (column->isSummed) column->allSum.addAll(column->column, records, column->items.get(), first);
  }
}

void CShownRows::Private::sumColumn(CColumn& column) {
  column.allSum = CColumnSum();
  if (column.isSummed) column.allSum.addAll(column.column, records, column.items.get(), 0);
  sumShownAnew();
}

void CShownRows::Private::sumAll() {
  for (const auto& column : columns) column->allSum = CColumnSum();
  sumNewRows(0);
  sumShownAnew();
}

void CShownRows::Private::sumShownAnew() {
  for (const auto& column : columns) column->shownSum = CColumnSum();
  shownSummed = 0;
  prepareSums(SUMMED_AT_ONCE);
}

bool CShownRows::Private::prepareSums(int rows) {
  if (!isFiltered()) return true;
  const bool hasSums = std::any_of(columns.begin(), columns.end(), [](const auto& column) { return column->isSummed; });
  int slot = hasSums ? passing.next(shownSummed) : -1;
  for (; slot >= 0 && rows > 0; slot = passing.next(slot + 1), --rows) {
    for (const auto& column : columns) {
      if (column->isSummed) column->shownSum.add(column->column, cell(*column, slot));
    }
  }
  shownSummed = slot >= 0 ? slot : static_cast<int>(records.size());
  return slot < 0;
}

void CShownRows::setSum(int columnId, bool on) {
  if (column(columnId) == nullptr) return;
  Private::CColumn& held = *m_d->columns[at(columnId)];
  if (held.isSummed == on || (on && !CColumnSum::isSummable(held.column))) return;
  held.isSummed = on;
  m_d->sumColumn(held);
}

bool CShownRows::hasSum(int columnId) const {
  return column(columnId) != nullptr && m_d->columns[at(columnId)]->isSummed;
}

bool CShownRows::hasSums() const {
  return std::any_of(m_d->columns.begin(), m_d->columns.end(), [](const auto& column) { return column->isSummed; });
}

bool CShownRows::areSumsReady() const { return !isFiltered() || !hasSums() || m_d->passing.next(m_d->shownSummed) < 0; }

bool CShownRows::prepareSums(int rows) { return m_d->prepareSums(rows); }

QString CShownRows::sumText(int columnId) const {
  if (!hasSum(columnId)) return {};
  if (!areSumsReady()) return QString::fromUtf8(SUM_TO_COME);
  const Private::CColumn& held = *m_d->columns[at(columnId)];
  return (isFiltered() ? held.shownSum : held.allSum).text(held.column);
}

}  // namespace GW
