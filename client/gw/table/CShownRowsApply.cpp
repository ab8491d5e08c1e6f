// How the displayed rows take over what the shared side hands them.

#include "gw/table/CShownRows.h"
#include "gw/table/CShownRowsPrivate.h"
#include "gw/table/item_columns.h"
#include "gw/table/vector_growth.h"
#include "gw/table_release.h"
#include "rdservice/prefetch.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <type_traits>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

constexpr std::size_t FEW = 8;
constexpr std::size_t RECORD_BYTES = 256;  ///< of a usual record

/// More changes than this are cheaper by making the order anew.
bool isMany(std::size_t changes, std::size_t rows) {
  constexpr std::size_t PART = 16;
  return changes > FEW + rows / PART;
}

/// More new rows than this are cheaper by going through all.
bool isMerged(std::size_t added, std::size_t rows) {
  constexpr std::size_t PART = 128;
  return added > FEW + rows / PART;
}

/// While more rows come at once, so many wait until they are as many as the others: each time, all are gone through.
bool isWorthOrdering(std::size_t waiting, std::size_t ordered) {
  constexpr std::size_t MANY = 50000;
  return waiting > std::max(MANY, ordered);
}

/// More waiting rows than this are cheaper by sorting all: that goes through the keys one after the other, merging goes
/// from one end of the memory to the other.
bool isSortedAnew(std::size_t waiting, std::size_t ordered) {
  constexpr std::size_t PART = 4;
  return waiting > FEW + ordered / PART;
}

}  // namespace

void CShownRows::Private::tell(const CRowsChange& change, const std::function<void()>& act) {
  assert(!isChanging && "a change begins when the one before it is done");
  isChanging = true;
  if (observer != nullptr) observer->rowsAboutToChange(change);
  act();
  isChanging = false;
  if (observer != nullptr) observer->rowsChanged(change);
}

void CShownRows::clear() {
  ++m_d->clears;
  m_d->dropAll();
}

void CShownRows::Private::dropAll() {
  if (!records.empty()) drop(std::vector<int>(records.size(), -1));
}

void CShownRows::Private::drop(const std::vector<int>& newSlots) {
  const auto movedTo = [&newSlots](int slot) { return newSlots[at(slot)]; };
  const int kept =
      static_cast<int>(newSlots.size()) - static_cast<int>(std::count(newSlots.begin(), newSlots.end(), -1));
  CGarbage garbage;
  garbage.records.resize(at(kept));
  CRowsChange change;
  change.kind = CRowsChange::Reset;
  change.newSlots = &newSlots;
  tell(change, [&] {
    // The kept rows stay in order among themselves, so that nothing is sorted anew.
    std::vector<int> slots;
    order.forEach([&](int slot) {
      if (movedTo(slot) >= 0) slots.push_back(movedTo(slot));
    });
    const auto moveAll = [&](auto& list) {
      std::remove_reference_t<decltype(list)> moved(at(kept));
      for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
        if (newSlots[slot] >= 0) moved[at(newSlots[slot])] = std::move(list[slot]);
      }
      list.swap(moved);
    };
    for (const auto& column : columns) {
      if (column->keys) moveAll(column->keys->keys);
      if (column->items && kept > 0) column->items->renumber(newSlots, kept);
      if (kept == 0) garbage.items.push_back(std::move(column->items));
      const bool isComplete = column->values && column->values->codes.size() == newSlots.size();
      if (!isComplete || (kept == 0 && column->values->isPlain())) garbage.values.push_back(std::move(column->values));
      if (!column->values) continue;
      for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
        if (newSlots[slot] < 0) column->values->release(column->values->codes[slot]);
      }
      moveAll(column->values->codes);
    }
    for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
      if (newSlots[slot] >= 0) garbage.records[at(newSlots[slot])] = std::move(records[slot]);
    }
    records.swap(garbage.records);
    ordered -=
        at(static_cast<int>(std::count(newSlots.begin(), newSlots.begin() + static_cast<std::ptrdiff_t>(ordered), -1)));
    order.assign(slots);
    findPassing();
    rebuildShownOrder();
    sumAll();
  });
  const std::size_t count = garbage.records.size();
  releaseRecords(std::move(garbage), count);
}

void CShownRows::apply(CRowsDrain&& drain) {
  const unsigned clears = m_d->clears;
  if (drain.cleared) m_d->dropAll();
  if (drain.replaced) m_d->drop(drain.newSlots);
  // Whoever was told of the drop may have emptied the table; the drain is then of rows that are gone.
  if (drain.slots.empty() || m_d->clears != clears) return;
  const std::size_t oldCount = m_d->records.size();
  const std::vector<Private::CStep> steps = m_d->plan(drain, oldCount);
  const std::size_t newCount = oldCount + drain.slots.size() - steps.size();
  const bool isOrdered = m_d->sort.empty() || !drain.isMore || isWorthOrdering(newCount - m_d->ordered, m_d->ordered);
  m_d->tell(m_d->kindOf(steps, isOrdered ? newCount : m_d->ordered), [&] {
    m_d->changeRows(drain, steps);
    m_d->addRows(drain, oldCount);
    if (isOrdered) m_d->orderWaiting();
    m_d->prepareSums(Private::SUMMED_AT_ONCE);
    if (m_d->remakeVoidKeys()) m_d->rebuildOrders();
  });
  const std::size_t count = drain.records.size();
  releaseRecords(std::move(drain.records), count);
}

void CShownRows::finishApplying() {
  if (!hasWaiting()) return;
  m_d->tell(m_d->kindOf({}, m_d->records.size()), [this] { m_d->orderWaiting(); });
}

bool CShownRows::hasWaiting() const { return m_d->ordered < m_d->records.size(); }

/// Values, with which filters work, are new afterwards, of the drain's new rows too; everything else is as before.
std::vector<CShownRows::Private::CStep> CShownRows::Private::plan(const CRowsDrain& drain, std::size_t oldCount) {
  std::vector<CStep> steps;
  for (std::size_t i = 0; i < drain.slots.size() && at(drain.slots[i]) < oldCount; ++i) {
    const int slot = drain.slots[i];
    rdservice::prefetch(records[at(slot)].get(), RECORD_BYTES);
    rdservice::prefetch(drain.records[i].get(), RECORD_BYTES);
    steps.push_back({slot, i, isWaiting(slot), false, passes(slot), false});
  }
  for (std::size_t id = 0; id < columns.size(); ++id) {
    if (columns[id]->values) takeValues(static_cast<int>(id), drain, oldCount);
  }
  for (std::size_t i = 0; isFiltered() && i < drain.slots.size(); ++i) updatePassing(drain.slots[i]);
  for (CStep& step : steps) {
    step.isShown = passes(step.slot);
    step.isMoved = std::any_of(sort.begin(), sort.end(), [&](const CSortColumn& by) {
      return differs(by.column, step.slot, cell(by.column, drain, step.index));
    });
  }
  return steps;
}

void CShownRows::Private::takeValues(int columnId, const CRowsDrain& drain, std::size_t oldCount) {
  CValueColumn& values = *columns[at(columnId)]->values;
  growFor(values.codes, std::max(oldCount, at(drain.total)));
  for (std::size_t i = 0; i < drain.slots.size(); ++i) {
    const std::size_t slot = at(drain.slots[i]);
    if (slot > values.codes.size()) continue;  // its turn comes when the values are completed
    const std::uint32_t code = values.take(cell(columnId, drain, i), drain.records[i]);
    if (slot < values.codes.size())
      values.release(std::exchange(values.codes[slot], code));
    else
      values.codes.push_back(code);
  }
}

/// With the rows below `newOrdered` in the orders.
CRowsChange CShownRows::Private::kindOf(const std::vector<CStep>& steps, std::size_t newOrdered) const {
  CRowsChange change;
  bool isOtherSet = false;
  bool isOtherOrder = false;
  // Texts for which there was no room have the keys of others, so that only the orders made anew tell where they go.
  isOtherOrder = std::any_of(sort.begin(), sort.end(),
                             [this](const CSortColumn& by) { return columns[at(by.column)]->keys->isFull(); });
  for (const CStep& step : steps) {
    if (step.isWaiting) continue;
    isOtherSet = isOtherSet || step.wasShown != step.isShown;
    isOtherOrder = isOtherOrder || (step.isMoved && step.isShown);
    if (step.wasShown && step.isShown) change.changedSlots.push_back(step.slot);
  }
  change.firstAdded = rowCount();
  change.added = isFiltered() ? passing.countBetween(ordered, newOrdered) : static_cast<int>(newOrdered - ordered);
  if (isOtherSet || (change.added > 0 && !sort.empty()))
    change.kind = CRowsChange::Reset;
  else if (change.added > 0)
    change.kind = CRowsChange::Append;
  else if (isOtherOrder)
    change.kind = CRowsChange::Order;
  return change;
}

void CShownRows::Private::changeRows(CRowsDrain& drain, const std::vector<CStep>& steps) {
  const bool isSorted = !sort.empty();
  const auto moves = static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](const CStep& step) {
    return !step.isWaiting && (step.isMoved || step.wasShown != step.isShown);
  }));
  const bool isRebuilt = isMany(moves, records.size());
  // Entries leave with their old keys and come back with their new ones.
  for (const CStep& step : steps) {
    if (isRebuilt) break;
    if (step.isWaiting) continue;
    if (isFiltered() && step.wasShown && (step.isMoved || !step.isShown)) shownOrder.erase(step.slot);
    if (isSorted && step.isMoved) order.erase(step.slot);
  }
  const std::vector<CItemSource> itemSources = itemSourcesOf(drain);
  for (const CStep& step : steps) {
    sumChangedRow(step, drain);
    for (const CItemSource& source : itemSources) source.copyCell(step.slot, step.index);
    replaceRow(drain, step.index, step.slot);
  }
  if (isRebuilt) {
    rebuildOrders();
    return;
  }
  for (const CStep& step : steps) {
    if (step.isWaiting) continue;
    if (isFiltered() && step.isShown && (step.isMoved || !step.wasShown)) shownOrder.insert(step.slot);
    if (isSorted && step.isMoved) order.insert(step.slot);
  }
}

void CShownRows::Private::addRows(CRowsDrain& drain, std::size_t oldCount) {
  const auto firstNew =
      std::find_if(drain.slots.begin(), drain.slots.end(), [oldCount](int slot) { return at(slot) >= oldCount; });
  const std::size_t added = static_cast<std::size_t>(drain.slots.end() - firstNew);
  if (added == 0) return;
  const std::size_t room = std::max(oldCount + added, at(drain.total));
  growFor(records, room);
  for (const auto& column : columns) {
    if (column->keys) growFor(column->keys->keys, room);
  }
  // A part after the other, so that a record is still at hand when its sums follow its keys.
  constexpr std::size_t PART = 1024;
  const std::vector<CItemSource> itemSources = itemSourcesOf(drain);
  for (auto index = static_cast<std::size_t>(firstNew - drain.slots.begin()); index < drain.slots.size();) {
    const std::size_t end = std::min(index + PART, drain.slots.size());
    const std::size_t first = records.size();
    for (; index < end; ++index) {
      for (const CItemSource& source : itemSources) source.copyCell(drain.slots[index], index);
      records.push_back(std::move(drain.records[index]));
    }
    for (const auto& column : columns) {
      if (column->keys) column->keys->fill(records, column->items.get());
    }
    sumNewRows(first);
  }
}

/// Puts the rows that wait into the orders.
void CShownRows::Private::orderWaiting() {
  if (isSortedAnew(records.size() - ordered, ordered)) {
    ordered = records.size();
    rebuildOrders();
    return;
  }
  const auto put = [](CBlockOrder& to, std::vector<int> slots) {
    if (isMerged(slots.size(), at(to.size()))) {
      to.sort(slots);
      to.merge(slots);
    } else {
      for (const int slot : slots) to.insert(slot);
    }
  };
  if (!sort.empty()) {
    std::vector<int> slots(records.size() - ordered);
    std::iota(slots.begin(), slots.end(), static_cast<int>(ordered));
    put(order, std::move(slots));
  }
  if (isFiltered()) {
    std::vector<int> slots;
    for (int slot = passing.next(static_cast<int>(ordered)); slot >= 0; slot = passing.next(slot + 1))
      slots.push_back(slot);
    put(shownOrder, std::move(slots));
  }
  ordered = records.size();
}

/// The columns whose cells a drain sets or unsets.
std::vector<CShownRows::Private::CItemSource> CShownRows::Private::itemSourcesOf(const CRowsDrain& drain) {
  std::vector<CItemSource> sources;
  for (std::size_t id = 0; id < columns.size(); ++id) {
    auto& items = columns[id]->items;
    const CItemColumn* cells = drain.items.empty() ? nullptr : findColumn(drain.items, static_cast<int>(id));
    if (!items && cells == nullptr) continue;
    if (!items) items = std::make_unique<CItemColumn>();
    sources.push_back({items.get(), cells});
  }
  return sources;
}

void CShownRows::Private::CItemSource::copyCell(int slot, std::size_t index) const {
  static const CItemColumn unset;
  items->copyCell(slot, cells == nullptr ? unset : *cells, static_cast<int>(index));
}

/// The row gets the drain's record and the keys of every column; the old record goes to the drain.
void CShownRows::Private::replaceRow(CRowsDrain& drain, std::size_t index, int slot) {
  for (std::size_t id = 0; id < columns.size(); ++id) {
    CColumn& column = *columns[id];
    if (column.keys) column.keys->keys[at(slot)] = column.keys->make(cell(static_cast<int>(id), drain, index));
  }
  std::swap(records[at(slot)], drain.records[index]);
}

bool CShownRows::Private::remakeVoidKeys() {
  bool isSortVoid = false;
  for (std::size_t id = 0; id < columns.size(); ++id) {
    CColumn& column = *columns[id];
    if (!column.keys || !column.keys->isVoid()) continue;
    column.keys.reset();
    const bool isSorted =
        std::any_of(sort.begin(), sort.end(), [id](const CSortColumn& by) { return at(by.column) == id; });
    if (isSorted) keysOf(static_cast<int>(id));
    isSortVoid = isSortVoid || isSorted;
  }
  return isSortVoid;
}

}  // namespace GW
