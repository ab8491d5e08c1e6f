#include "CNaiveTable.h"

#include "CTestTable.h"

#include <QLocale>

#include <algorithm>

namespace {

template <class T>
int order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

}  // namespace

CNaiveTable::CNaiveTable() : m_collator(QLocale(QLocale::Chinese, QLocale::China)) {}

void CNaiveTable::apply(const CBatchPlan& plan) {
  std::set<std::string> gone;
  for (const CRow& row : heldRows) {
    const bool isGathered = std::any_of(plan.records.begin(), plan.records.end(),
                                        [&row](const CTestRecordPtr& record) { return record->id == row.record->id; });
    if (plan.dropGroup && row.record->group == *plan.dropGroup && !isGathered) gone.insert(row.record->id);
  }
  if (plan.clearFirst) {
    heldRows.clear();
    m_items.clear();
  }
  drop(gone);
  std::map<std::string, bool> accepted;
  for (const CTestRecordPtr& record : plan.records) put(record, plan.rule, accepted);
  for (const GW::CItemChange& change : plan.items) {
    const auto it = accepted.find(change.key);
    if (it == accepted.end() || it->second) changeItem(change);
  }
}

void CNaiveTable::drop(const std::set<std::string>& keys) {
  heldRows.erase(std::remove_if(heldRows.begin(), heldRows.end(),
                                [&keys](const CRow& row) { return keys.count(row.record->id) > 0; }),
                 heldRows.end());
  for (auto& [column, items] : m_items) {
    for (const std::string& key : keys) items.erase(key);
  }
}

void CNaiveTable::put(const CTestRecordPtr& record, GW::ERowRule rule, std::map<std::string, bool>& accepted) {
  const auto row =
      std::find_if(heldRows.begin(), heldRows.end(), [&record](const CRow& r) { return r.record->id == record->id; });
  bool& isAccepted = accepted[record->id];
  isAccepted = false;
  if (row == heldRows.end()) {
    heldRows.push_back({m_nextSerial++, record, {}});
    isAccepted = true;
    return;
  }
  const auto held = row->record->version();
  const auto version = record->version();
  if (rule == GW::ERowRule::Push ? version <= held : version != 0 && version < held) return;
  row->record = record;
  isAccepted = true;
}

void CNaiveTable::changeItem(const GW::CItemChange& change) {
  if (change.part == GW::EItemPart::ResetColumn) {
    m_items[change.column].clear();
    return;
  }
  GW::CItemState& item = m_items[change.column][change.key];
  if (change.part == GW::EItemPart::Text) item.text = change.text;
  if (change.part == GW::EItemPart::Visible) item.visible = change.on;
  if (change.part == GW::EItemPart::Enabled) item.enabled = change.on;
  if (change.part == GW::EItemPart::Checked) item.checked = change.on;
}

void CNaiveTable::clear() {
  heldRows.clear();
  m_items.clear();
  drain();
}

void CNaiveTable::drain() {
  displayedRows = heldRows;
  std::set<int> live;
  for (CRow& row : displayedRows) {
    live.insert(row.serial);
    for (const auto& [column, items] : m_items) row.items[column] = item(column, row.record->id);
  }
  for (auto it = selected.begin(); it != selected.end();) it = live.count(*it) > 0 ? std::next(it) : selected.erase(it);
  if (live.count(current) == 0) current = -1;
  sortDisplayed();
}

void CNaiveTable::setSort(int column, Qt::SortOrder newOrder) {
  m_sortColumn = column;
  m_order = newOrder;
  sortDisplayed();
}

void CNaiveTable::sortDisplayed() {
  std::sort(displayedRows.begin(), displayedRows.end(),
            [](const CRow& a, const CRow& b) { return a.serial < b.serial; });
  if (m_sortColumn < 0) return;
  std::stable_sort(displayedRows.begin(), displayedRows.end(), [this](const CRow& a, const CRow& b) {
    return m_order == Qt::AscendingOrder ? compare(a, b) < 0 : compare(a, b) > 0;
  });
}

int CNaiveTable::compare(const CRow& a, const CRow& b) const {
  switch (m_sortColumn) {
    case CTestRecord::ColumnGroup: return order(a.record->group, b.record->group);
    case CTestRecord::ColumnVolume: return order(a.record->volume, b.record->volume);
    case CTestRecord::ColumnAmount: return order(a.record->amount, b.record->amount);
    case CTestRecord::ColumnDate: return order(a.record->date, b.record->date);
    case CTestTable::ColumnRanked:
      return order(CTestTable::rankOf(QString::fromStdString(a.record->id)),
                   CTestTable::rankOf(QString::fromStdString(b.record->id)));
    default: return m_collator.compare(text(a, m_sortColumn), text(b, m_sortColumn));
  }
}

QString CNaiveTable::text(const CRow& row, int column) const {
  if (column < CTestRecord::ColumnCount) {
    const rdservice::CFieldDes& field = *(CTestRecord::structDes().begin() + column);
    return QString::fromStdString(rdservice::fieldText(field, *row.record));
  }
  const auto it = row.items.find(column);
  return it != row.items.end() && it->second.visible ? it->second.text : QString();
}

GW::CItemState CNaiveTable::item(int column, const std::string& key) const {
  const auto items = m_items.find(column);
  if (items == m_items.end()) return {};
  const auto it = items->second.find(key);
  return it == items->second.end() ? GW::CItemState() : it->second;
}

const CNaiveTable::CRow* CNaiveTable::held(const std::string& key) const {
  const auto it =
      std::find_if(heldRows.begin(), heldRows.end(), [&key](const CRow& row) { return row.record->id == key; });
  return it == heldRows.end() ? nullptr : &*it;
}
