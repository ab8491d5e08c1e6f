// Filters of the displayed rows.

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
  return column.values->fill(records, column.items.get(), rows);
}

bool CShownRows::Private::passesOthers(int slot, int exceptColumn) const {
  return std::all_of(filters.begin(), filters.end(), [&](int columnId) {
    const CValueColumn& values = *columns[at(columnId)]->values;
    return columnId == exceptColumn || values.accepts(values.codes[at(slot)]);
  });
}

void CShownRows::Private::updatePassing(int slot) {
  if (isFiltered()) passing.set(slot, passesOthers(slot, -1));
}

void CShownRows::Private::findPassing() {
  passing.clear();
  for (const int columnId : filters) {
    const CValueColumn& values = *columns[at(columnId)]->values;
    const std::vector<char> accepted = values.acceptedCodes();
    const CSlotBits others = passing;
    if (columnId == filters.front())
      passing.assign(records.size(), [&](std::size_t slot) { return accepted[values.codes[slot]] != 0; });
    else
      passing.assign(records.size(), [&](std::size_t slot) {
        return others.has(static_cast<int>(slot)) && accepted[values.codes[slot]] != 0;
      });
  }
}

void CShownRows::Private::setFiltering(int columnId, const std::function<void(CValueColumn&)>& accept) {
  CRowsChange change;
  change.kind = CRowsChange::Reset;
  tell(change, [&] {
    CValueColumn& values = valuesOf(columnId);
    accept(values);
    filters.erase(std::remove(filters.begin(), filters.end(), columnId), filters.end());
    if (values.isFiltering()) filters.push_back(columnId);
    findPassing();
    rebuildShownOrder();
    sumShownAnew();
  });
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
    if (m_d->passesOthers(slot, columnId)) ++rows[values.codes[at(slot)]];
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

}  // namespace GW
