// Filters and sums of the displayed rows.

#include "gw/table/CShownRows.h"
#include "gw/table/CShownRowsPrivate.h"
#include "gw/table/vector_growth.h"

#include <algorithm>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

}  // namespace

CValueColumn& CShownRows::Private::valuesOf(int columnId) {
  while (!prepareValues(columnId, records.size())) {
  }
  return *columns[at(columnId)]->values;
}

bool CShownRows::Private::prepareValues(int columnId, std::size_t rows) {
  CColumn& column = *columns[at(columnId)];
  if (!column.values) column.values = std::make_unique<CValueColumn>(column.column);
  std::vector<std::uint32_t>& codes = column.values->codes;
  growFor(codes, records.size());
  for (; rows > 0 && codes.size() < records.size(); --rows) {
    const std::size_t slot = codes.size();
    codes.push_back(column.values->take(cell(column, static_cast<int>(slot)), records[slot]));
  }
  return codes.size() == records.size();
}

bool CShownRows::Private::passes(int slot, int exceptColumn) const {
  return std::all_of(filters.begin(), filters.end(), [&](int columnId) {
    const CValueColumn& values = *columns[at(columnId)]->values;
    return columnId == exceptColumn || values.accepts(values.codes[at(slot)]);
  });
}

/// How many of the rows that a drain adds will pass, once their values are taken.
int CShownRows::Private::shownAdded(std::size_t oldCount, std::size_t added) const {
  if (!isFiltered()) return static_cast<int>(added);
  int count = 0;
  for (std::size_t i = 0; i < added; ++i) count += passes(static_cast<int>(oldCount + i)) ? 1 : 0;
  return count;
}

void CShownRows::Private::setFiltering(int columnId, const std::function<void(CValueColumn&)>& accept) {
  CRowsChange change;
  change.kind = CRowsChange::Reset;
  tell(change, [&] {
    CValueColumn& values = valuesOf(columnId);
    accept(values);
    filters.erase(std::remove(filters.begin(), filters.end(), columnId), filters.end());
    if (values.isFiltering()) filters.push_back(columnId);
    rebuildShownOrder();
    for (const auto& column : columns) column->shownSum = CColumnSum();
    if (!isFiltered()) return;
    shownOrder.forEach([this](COrderEntry shown) {
      for (const auto& column : columns) {
        if (column->isSummed) column->shownSum.add(column->column, cell(*column, shown.slot));
      }
    });
  });
}

void CShownRows::Private::sumRow(int slot, bool isShown, bool isAdded) {
  for (const auto& column : columns) {
    if (!column->isSummed) continue;
    const CCell summand = cell(*column, slot);
    const auto change = [&](CColumnSum& sum) {
      if (isAdded)
        sum.add(column->column, summand);
      else
        sum.subtract(column->column, summand);
    };
    change(column->allSum);
    if (isShown && isFiltered()) change(column->shownSum);
  }
}

void CShownRows::Private::sumColumn(CColumn& column) {
  column.allSum = column.shownSum = CColumnSum();
  for (int slot = 0; column.isSummed && at(slot) < records.size(); ++slot) {
    column.allSum.add(column.column, cell(column, slot));
    if (isFiltered() && passes(slot)) column.shownSum.add(column.column, cell(column, slot));
  }
}

void CShownRows::Private::sumAll() {
  for (const auto& column : columns) column->allSum = column->shownSum = CColumnSum();
  for (int slot = 0; at(slot) < records.size(); ++slot) sumRow(slot, passes(slot), true);
}

void CShownRows::setFilter(int columnId, std::optional<QStringList> texts) {
  if (column(columnId) == nullptr || (!texts && !isFiltered(columnId))) return;
  m_d->setFiltering(columnId, [&texts](CValueColumn& values) {
    if (texts)
      values.accept(*texts);
    else
      values.acceptAll();
  });
}

void CShownRows::setFilterByCodes(int columnId, const std::vector<std::uint32_t>& codes) {
  if (column(columnId) == nullptr) return;
  m_d->setFiltering(columnId, [&codes](CValueColumn& values) { values.acceptCodes(codes); });
}

bool CShownRows::isFiltered(int columnId) const {
  return std::find(m_d->filters.begin(), m_d->filters.end(), columnId) != m_d->filters.end();
}

bool CShownRows::isFiltered() const { return m_d->isFiltered(); }

std::optional<QStringList> CShownRows::filter(int columnId) const {
  if (!isFiltered(columnId)) return std::nullopt;
  return m_d->columns[at(columnId)]->values->accepted();
}

bool CShownRows::prepareValues(int columnId, int rows) {
  return column(columnId) == nullptr || m_d->prepareValues(columnId, static_cast<std::size_t>(std::max(rows, 1)));
}

std::vector<CShownRows::CValue> CShownRows::values(int columnId) {
  std::vector<CValue> all;
  if (column(columnId) == nullptr) return all;
  const CValueColumn& values = m_d->valuesOf(columnId);
  const std::vector<std::uint32_t> codes = values.ordered();
  std::vector<int> rows(values.codeCount());
  for (int slot = 0; slot < slotCount(); ++slot) {
    if (m_d->passes(slot, columnId)) ++rows[values.codes[at(slot)]];
  }
  all.reserve(codes.size());
  for (const std::uint32_t code : codes) all.push_back({code, rows[code], values.accepts(code)});
  return all;
}

QString CShownRows::valueText(int columnId, std::uint32_t code) const {
  if (column(columnId) == nullptr) return {};
  const auto& values = m_d->columns[at(columnId)]->values;
  return values && values->isKnown(code) ? values->text(code) : QString();
}

void CShownRows::holdValues(int columnId, bool on) {
  if (column(columnId) == nullptr) return;
  if (on || m_d->columns[at(columnId)]->values) m_d->valuesOf(columnId).hold(on);
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

QString CShownRows::sumText(int columnId) const {
  if (!hasSum(columnId)) return {};
  const Private::CColumn& held = *m_d->columns[at(columnId)];
  return (isFiltered() ? held.shownSum : held.allSum).text(held.column);
}

}  // namespace GW
