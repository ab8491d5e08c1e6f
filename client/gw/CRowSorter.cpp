#include "gw/CRowSorter.h"

#include "gw/CRowText.h"

#include "rdservice/CInternedText.h"

#include <QLocale>

#include <cstring>

namespace GW {

using rdservice::EFieldType;

namespace {

constexpr std::uint64_t SIGN = std::uint64_t{1} << 63;

std::uint64_t sortable(std::int64_t value) { return static_cast<std::uint64_t>(value) ^ SIGN; }

std::uint64_t sortable(double value) {
  value += 0.0;  // -0.0 equals 0.0
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & SIGN) != 0 ? ~bits : bits | SIGN;
}

}  // namespace

int CRowSorter::CKey::compare(const CKey& other) const {
  if (text && other.text) return number != 0 && number == other.number ? 0 : text->compare(*other.text);
  return number < other.number ? -1 : number > other.number ? 1 : 0;
}

CRowSorter::CRowSorter() : m_collator(QLocale(QLocale::Chinese, QLocale::China)) {}

void CRowSorter::setColumn(const CTableColumn* column, int columnId, Qt::SortOrder order) {
  m_column = column;
  m_columnId = columnId;
  m_order = order;
  m_keys.clear();
}

bool CRowSorter::setKey(int slot, CKey key) {
  const auto index = static_cast<std::size_t>(slot);
  if (index >= m_keys.size()) {
    m_keys.push_back(std::move(key));
    return true;
  }
  const bool isChanged = m_keys[index].compare(key) != 0;
  m_keys[index] = std::move(key);
  return isChanged;
}

void CRowSorter::renumber(const std::vector<int>& newSlots, std::size_t count) {
  if (!isActive()) return;
  std::vector<CKey> keys(count);
  for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
    if (newSlots[slot] >= 0) keys[static_cast<std::size_t>(newSlots[slot])] = std::move(m_keys[slot]);
  }
  m_keys = std::move(keys);
}

bool CRowSorter::isBefore(int slot, int other) const {
  const int order = m_keys[static_cast<std::size_t>(slot)].compare(m_keys[static_cast<std::size_t>(other)]);
  if (order == 0) return slot < other;
  return m_order == Qt::AscendingOrder ? order < 0 : order > 0;
}

CRowSorter::CKey CRowSorter::makeKey(const CShownRow& row) {
  const rdservice::IData& record = *row.record;
  if (m_column->delegate) {
    if (const auto& sortKey = m_column->delegate->sortKey())
      return {sortable(std::int64_t{sortKey(QString::fromStdString(record.getKey()))}), std::nullopt};
    return {0, m_collator.sortKey(cellTextOf(*m_column, m_columnId, row))};
  }
  if (m_column->field == nullptr) return {};
  const rdservice::CFieldDes& field = *m_column->field;
  switch (field.type) {
    case EFieldType::Char: return {sortable(std::int64_t{field.get<char>(record)}), std::nullopt};
    case EFieldType::Int32: return {sortable(std::int64_t{field.get<std::int32_t>(record)}), std::nullopt};
    case EFieldType::Int64: return {sortable(field.get<std::int64_t>(record)), std::nullopt};
    case EFieldType::Double: return {sortable(field.get<double>(record)), std::nullopt};
    case EFieldType::Interned: {
      const std::string& text = field.get<rdservice::CInternedText>(record).str();
      auto it = m_interned.find(&text);
      if (it == m_interned.end())
        it = m_interned.emplace(&text, m_collator.sortKey(QString::fromStdString(text))).first;
      return {reinterpret_cast<std::uintptr_t>(&text), it->second};
    }
    case EFieldType::Account:
    case EFieldType::Text: break;
  }
  return {0, m_collator.sortKey(cellTextOf(*m_column, m_columnId, row))};
}

}  // namespace GW
