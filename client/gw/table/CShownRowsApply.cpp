// How the displayed rows take over what the shared side hands them.

#include "gw/table/CShownRows.h"
#include "gw/table/CShownRowsPrivate.h"
#include "gw/table/item_columns.h"
#include "gw/table/record_prefetch.h"
#include "gw/table/vector_growth.h"
#include "gw/table_release.h"

#include <algorithm>
#include <cassert>
#include <type_traits>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

/// More changes than this are cheaper by making the order anew.
bool isMany(std::size_t changes, std::size_t rows) {
  constexpr std::size_t FEW = 8;
  constexpr std::size_t PART = 16;
  return changes > FEW + rows / PART;
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
    std::vector<COrderEntry> entries;
    order.forEach([&](COrderEntry held) {
      if (movedTo(held.slot) >= 0) entries.push_back({held.key, movedTo(held.slot)});
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
    order.assign(entries);
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
  m_d->tell(m_d->kindOf(steps, drain.slots.size() - steps.size()), [&] {
    m_d->changeRows(drain, steps);
    m_d->addRows(drain, oldCount);
    if (m_d->remakeVoidKeys()) m_d->rebuildOrders();
  });
  const std::size_t count = drain.records.size();
  releaseRecords(std::move(drain.records), count);
}

/// Values, with which filters work, are new afterwards, of the drain's new rows too; everything else is as before.
std::vector<CShownRows::Private::CStep> CShownRows::Private::plan(const CRowsDrain& drain, std::size_t oldCount) {
  std::vector<CStep> steps;
  for (const auto& column : columns) {
    if (column->values) growFor(column->values->codes, std::max(oldCount, at(drain.total)));
  }
  for (std::size_t i = 0; i < drain.slots.size(); ++i) {
    const int slot = drain.slots[i];
    const bool isOld = at(slot) < oldCount;
    CStep step{slot, i, false, isOld && passes(slot), false};
    for (std::size_t id = 0; id < columns.size(); ++id) {
      if (!columns[id]->values) continue;
      CValueColumn& values = *columns[id]->values;
      if (at(slot) > values.codes.size()) continue;  // its turn comes when the values are completed
      const std::uint32_t code = values.take(cell(static_cast<int>(id), drain, i), drain.records[i]);
      if (at(slot) < values.codes.size())
        values.release(std::exchange(values.codes[at(slot)], code));
      else
        values.codes.push_back(code);
    }
    if (!isOld) continue;
    step.isShown = passes(slot);
    step.isMoved = std::any_of(sort.begin(), sort.end(), [&](const CSortColumn& by) {
      return differs(by.column, slot, cell(by.column, drain, i));
    });
    steps.push_back(step);
  }
  return steps;
}

CRowsChange CShownRows::Private::kindOf(const std::vector<CStep>& steps, std::size_t added) const {
  CRowsChange change;
  bool isOtherSet = false;
  bool isOtherOrder = false;
  // Texts for which there was no room have the keys of others, so that only the orders made anew tell where they go.
  isOtherOrder = std::any_of(sort.begin(), sort.end(),
                             [this](const CSortColumn& by) { return columns[at(by.column)]->keys->isFull(); });
  for (const CStep& step : steps) {
    isOtherSet = isOtherSet || step.wasShown != step.isShown;
    isOtherOrder = isOtherOrder || (step.isMoved && step.isShown);
    if (step.wasShown && step.isShown) change.changedSlots.push_back(step.slot);
  }
  change.firstAdded = rowCount();
  change.added = shownAdded(records.size(), added);
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
  const auto moves = static_cast<std::size_t>(std::count_if(
      steps.begin(), steps.end(), [](const CStep& step) { return step.isMoved || step.wasShown != step.isShown; }));
  const bool isRebuilt = isMany(moves, records.size());
  // Entries leave with their old keys and come back with their new ones.
  for (const CStep& step : steps) {
    if (isRebuilt) break;
    if (isFiltered() && step.wasShown && (step.isMoved || !step.isShown)) shownOrder.erase(entry(step.slot));
    if (isSorted && step.isMoved) order.erase(entry(step.slot));
  }
  for (const CStep& step : steps) {
    sumRow(step.slot, step.wasShown, false);
    takeRow(drain, step.index, step.slot);
    sumRow(step.slot, step.isShown, true);
  }
  if (isRebuilt) {
    rebuildOrders();
    return;
  }
  for (const CStep& step : steps) {
    if (isFiltered() && step.isShown && (step.isMoved || !step.wasShown)) shownOrder.insert(entry(step.slot));
    if (isSorted && step.isMoved) order.insert(entry(step.slot));
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
  std::vector<COrderEntry> entries;
  std::vector<COrderEntry> shown;
  for (auto it = firstNew; it != drain.slots.end(); ++it) {
    const int slot = *it;
    const auto index = static_cast<std::size_t>(it - drain.slots.begin());
    prefetchRecord(drain.records, index);
    takeRow(drain, index, slot);
    const bool isShown = passes(slot);
    sumRow(slot, isShown, true);
    if (!sort.empty()) entries.push_back(entry(slot));
    if (isFiltered() && isShown) shown.push_back(entry(slot));
  }
  const auto put = [](CBlockOrder& to, std::vector<COrderEntry>& list) {
    if (isMany(list.size(), at(to.size()))) {
      to.sort(list);
      to.merge(list);
    } else {
      for (const COrderEntry& one : list) to.insert(one);
    }
  };
  put(order, entries);
  put(shownOrder, shown);
}

/// The row of the slot, an old one or the next new one, becomes the drain's, with the keys of every column; the old
/// record goes to the drain.
void CShownRows::Private::takeRow(CRowsDrain& drain, std::size_t index, int slot) {
  const bool isNew = at(slot) == records.size();
  for (std::size_t id = 0; id < columns.size(); ++id) {
    CColumn& column = *columns[id];
    if (!column.keys) continue;
    const std::uint64_t key = column.keys->make(cell(static_cast<int>(id), drain, index));
    if (isNew)
      column.keys->keys.push_back(key);
    else
      column.keys->keys[at(slot)] = key;
  }
  static const CItemColumn unset;
  for (std::size_t id = 0; id < columns.size(); ++id) {
    auto& items = columns[id]->items;
    const CItemColumn* cells = findColumn(drain.items, static_cast<int>(id));
    if (!items && cells == nullptr) continue;
    if (!items) items = std::make_unique<CItemColumn>();
    items->copyCell(slot, cells == nullptr ? unset : *cells, static_cast<int>(index));
  }
  if (isNew)
    records.push_back(std::move(drain.records[index]));
  else
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
