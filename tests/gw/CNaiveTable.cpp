#include "CNaiveTable.h"

#include "CTestTable.h"

#include "rdservice/number_text.h"

#include <QLocale>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

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
  if (change.part == GW::EItemPart::Value) item.value = change.value;
}

void CNaiveTable::clear() {
  heldRows.clear();
  m_items.clear();
  drain();
}

void CNaiveTable::drain() {
  m_drained = heldRows;
  for (CRow& row : m_drained) {
    for (const auto& [column, items] : m_items) row.items[column] = item(column, row.record->id);
  }
  arrange();
}

void CNaiveTable::setSort(std::vector<std::pair<int, Qt::SortOrder>> columns) {
  m_sort = std::move(columns);
  arrange();
}

void CNaiveTable::setFilter(int column, std::optional<std::set<QString>> texts) {
  m_filters.erase(column);
  if (texts) m_filters[column] = std::move(*texts);
  arrange();
}

void CNaiveTable::arrange() {
  std::vector<const CRow*> rows;
  std::set<int> live;
  for (const CRow& row : m_drained) {
    const bool passes = std::all_of(m_filters.begin(), m_filters.end(), [&](const auto& filter) {
      return filter.second.count(text(row, filter.first)) > 0;
    });
    if (!passes) continue;
    rows.push_back(&row);
    live.insert(row.serial);
  }
  for (auto it = selected.begin(); it != selected.end();) it = live.count(*it) > 0 ? std::next(it) : selected.erase(it);
  if (live.count(current) == 0) current = -1;
  std::stable_sort(rows.begin(), rows.end(), [this](const CRow* a, const CRow* b) {
    for (const auto& [column, direction] : m_sort) {
      const int difference = compare(*a, *b, column);
      if (difference != 0) return (difference < 0) == (direction == Qt::AscendingOrder);
    }
    return false;
  });
  displayedRows.clear();
  for (const CRow* row : rows) displayedRows.push_back(*row);
}

int CNaiveTable::compare(const CRow& a, const CRow& b, int column) const {
  const auto cell = [column](const CRow& row) {
    const auto it = row.items.find(column);
    return it == row.items.end() ? GW::CItemState() : it->second;
  };
  switch (column) {
    case CTestRecord::ColumnGroup: return order(a.record->group, b.record->group);
    case CTestRecord::ColumnVolume: return order(a.record->volume, b.record->volume);
    case CTestRecord::ColumnAmount: return order(a.record->amount, b.record->amount);
    case CTestRecord::ColumnDate: return order(a.record->date, b.record->date);
    case CTestTable::ColumnRanked:
      return order(CTestRankDelegate::rankOf(cell(a).value), CTestRankDelegate::rankOf(cell(b).value));
    case CTestTable::ColumnCheck: return order(cell(a).checked, cell(b).checked);
    case CTestTable::ColumnNumber:
    case CTestTable::ColumnExtra: {
      const auto number = [&](const CRow& row) -> std::optional<qint64> {
        if (column == CTestTable::ColumnExtra && cell(row).value) return cell(row).value;
        bool ok = false;
        const qint64 value = cell(row).text.toLongLong(&ok);
        return ok ? std::make_optional(value) : std::nullopt;
      };
      const auto one = number(a), other = number(b);
      if (one && other) return order(*one, *other);
      if (one || other) return one ? -1 : 1;
      return compareTexts(cell(a).text.toStdString(), cell(b).text.toStdString());
    }
    case CTestRecord::ColumnId: return compareTexts(a.record->id, b.record->id);
    case CTestRecord::ColumnName: return compareTexts(a.record->name.str(), b.record->name.str());
    default: return compareTexts(text(a, column).toStdString(), text(b, column).toStdString());
  }
}

/// Codes before words, by their characters; words by pinyin.
int CNaiveTable::compareTexts(const std::string& a, const std::string& b) const {
  const auto isWord = [](const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) > 127; });
  };
  if (a == b) return 0;
  if (isWord(a) != isWord(b)) return isWord(a) ? 1 : -1;
  const int collated = isWord(a) ? m_collator.compare(QString::fromStdString(a), QString::fromStdString(b)) : 0;
  return collated != 0 ? collated : order(a, b);
}

QString CNaiveTable::sumText(int column) const {
  std::int64_t sum = 0;
  for (const CRow& row : displayedRows) {
    if (column == CTestRecord::ColumnVolume) sum += row.record->volume;
    if (column == CTestRecord::ColumnAmount) sum += std::llround(row.record->amount * 100);
    const auto it = row.items.find(column);
    if (column == CTestTable::ColumnExtra && it != row.items.end()) sum += it->second.value.value_or(0);
  }
  if (column != CTestRecord::ColumnAmount) return QString::fromStdString(rdservice::groupedText(std::to_string(sum)));
  const std::int64_t cents = std::abs(sum);
  return QString::fromStdString(
      rdservice::groupedText(fmt::format("{}{}.{:02}", sum < 0 ? "-" : "", cents / 100, cents % 100)));
}

QString CNaiveTable::text(const CRow& row, int column) const {
  if (column < CTestRecord::ColumnCount) {
    const rdservice::CFieldDes& field = *(CTestRecord::structDes().begin() + column);
    return QString::fromStdString(rdservice::fieldText(field, *row.record));
  }
  const auto it = row.items.find(column);
  if (it == row.items.end() || column == CTestTable::ColumnCheck) return {};
  if (column == CTestTable::ColumnExtra) {
    const auto value = it->second.value;
    return value ? QString::fromStdString(rdservice::groupedText(std::to_string(*value))) : it->second.text;
  }
  return it->second.visible ? it->second.text : QString();
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
