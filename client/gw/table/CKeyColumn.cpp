#include "gw/table/CKeyColumn.h"

#include "gw/delegates/CDelegateControl.h"
#include "gw/table/CFieldReader.h"
#include "gw/table/vector_growth.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"

#include <algorithm>
#include <optional>
#include <string>

namespace GW {

using rdservice::EFieldType;

namespace {

const std::string& accountIdOf(const rdservice::CFieldDes& field, const rdservice::IData& record) {
  static const std::string none;
  const auto& account = field.get<rdservice::CAccountInfoPtr>(record);
  return account == nullptr ? none : account->accountId;
}

/// The lower half of the keys is for numbers, the upper one for texts.
std::uint64_t numberKey(qint64 number) {
  constexpr qint64 LIMIT = qint64{1} << 62U;
  return static_cast<std::uint64_t>(std::clamp(number, -LIMIT, LIMIT - 1) + LIMIT);
}

}  // namespace

CKeyColumn::CKeyColumn(const CTableColumn& column) : m_column(column) {
  if (column.delegate) {
    const CDelegateControl& control = CDelegateControl::of(*column.delegate);
    if (control.valueOrder) {
      m_kind = Value;
      return;
    }
    switch (control.kind) {
      case ECellControl::CheckBox:
      case ECellControl::RadioButton: m_kind = Check; break;
      case ECellControl::IntSpinBox:
      case ECellControl::LineEdit: m_kind = NumberText; break;
      case ECellControl::Text: m_kind = ItemText; break;
    }
    return;
  }
  if (column.field == nullptr) {
    m_kind = NumberText;
    return;
  }
  switch (column.field->type) {
    case EFieldType::Account: m_kind = Account; break;
    case EFieldType::Text: m_kind = Text; break;
    case EFieldType::Interned: m_kind = Interned; break;
    case EFieldType::Char:
    case EFieldType::Int32:
    case EFieldType::Int64:
    case EFieldType::Double: m_kind = Field; break;
  }
}

std::uint64_t CKeyColumn::make(const CCell& cell) {
  switch (m_kind) {
    case None: break;
    case Field: return makeField(*cell.record);
    case Interned: return m_texts.pooledKey(m_column.field->get<rdservice::CInternedText>(*cell.record).str());
    case Text: return m_texts.key(m_column.field->get<std::string>(*cell.record));
    case Account: return m_texts.key(accountIdOf(*m_column.field, *cell.record));
    case Check: return cell.isChecked() ? 1 : 0;
    case Value: {
      std::optional<qint64> value;
      if (cell.hasValue()) value = cell.value();
      return sortable(std::int64_t{CDelegateControl::of(*m_column.delegate).valueOrder(value)});
    }
    case NumberText:
      if (m_column.delegate == nullptr && cell.hasValue()) return numberKey(cell.value());
      return makeNumberText(cell.text());
    case ItemText: return cell.isVisible() ? m_texts.key(cell.text().toStdString()) : 0;
  }
  return 0;
}

void CKeyColumn::fill(const std::vector<rdservice::IDataPtr>& records, const CItemColumn* items) {
  growFor(keys, records.size());
  if (m_kind == Field || m_kind == Interned) fillField(records);
  while (keys.size() < records.size())
    keys.push_back(make({records[keys.size()].get(), items, static_cast<int>(keys.size())}));
}

void CKeyColumn::fillField(const std::vector<rdservice::IDataPtr>& records) {
  const std::size_t first = keys.size();
  if (first == records.size()) return;
  const CFieldReader reader(*m_column.field, *records[first]);
  const auto fillWith = [&](auto sample, auto keyOf) {
    reader.forEach<decltype(sample)>(records, first, records.size(),
                                     [&](const auto& value) { keys.push_back(keyOf(value)); });
  };
  const auto numberOf = [](auto value) { return sortable(std::int64_t{value}); };
  switch (m_column.field->type) {
    case EFieldType::Char: return fillWith(char(), numberOf);
    case EFieldType::Int32: return fillWith(std::int32_t(), numberOf);
    case EFieldType::Int64: return fillWith(std::int64_t(), numberOf);
    case EFieldType::Double: return fillWith(double(), [](double value) { return sortable(value); });
    case EFieldType::Interned:
      return fillWith(rdservice::CInternedText(),
                      [this](rdservice::CInternedText text) { return m_texts.pooledKey(text.str()); });
    case EFieldType::Account:
    case EFieldType::Text: break;
  }
}

std::uint64_t CKeyColumn::makeField(const rdservice::IData& record) const {
  const rdservice::CFieldDes& field = *m_column.field;
  switch (field.type) {
    case EFieldType::Char: return sortable(std::int64_t{field.get<char>(record)});
    case EFieldType::Int32: return sortable(std::int64_t{field.get<std::int32_t>(record)});
    case EFieldType::Int64: return sortable(field.get<std::int64_t>(record));
    case EFieldType::Double: return sortable(field.get<double>(record));
    default: return 0;
  }
}

std::uint64_t CKeyColumn::makeNumberText(const QString& text) {
  bool isNumber = false;
  const qint64 number = text.toLongLong(&isNumber);
  if (isNumber) return numberKey(number);
  return TOP_BIT | m_texts.key(text.toStdString()) >> 1U;
}

bool CKeyColumn::mayDecide() const { return m_kind != None && m_kind != Field && m_kind != Check && m_kind != Value; }

bool CKeyColumn::decides(std::uint64_t key) const {
  switch (m_kind) {
    case Interned:
    case Text:
    case Account:
    case ItemText: return CTextOrder::isAmbiguous(key);
    case NumberText: return (key & TOP_BIT) != 0;
    default: return false;
  }
}

bool CKeyColumn::finerKeys(const std::vector<rdservice::IDataPtr>& records, const std::vector<int>& slots, int stage,
                           std::vector<std::uint64_t>& finer) const {
  constexpr int MOST_STAGES = 16;  // a sort goes one call deeper for each; texts may be of any length
  if (m_kind != Text || slots.empty() || stage >= MOST_STAGES) return false;
  const auto recordAt = [&](std::size_t i) -> const rdservice::IData& {
    return *records[static_cast<std::size_t>(slots[i])];
  };
  const CFieldReader reader(*m_column.field, recordAt(0));
  finer.clear();
  finer.reserve(slots.size());
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (i + CFieldReader::AHEAD < slots.size()) reader.prefetch<std::string>(recordAt(i + CFieldReader::AHEAD));
    finer.push_back(CTextOrder::nextKey(reader.get<std::string>(recordAt(i)), static_cast<std::size_t>(stage) + 1));
  }
  return true;
}

int CKeyColumn::compare(const CCell& a, const CCell& b) const {
  const rdservice::CFieldDes* field = m_column.field;
  switch (m_kind) {
    case Interned:
      return field->get<rdservice::CInternedText>(*a.record).str().compare(
          field->get<rdservice::CInternedText>(*b.record).str());
    case Text: return field->get<std::string>(*a.record).compare(field->get<std::string>(*b.record));
    case Account: return accountIdOf(*field, *a.record).compare(accountIdOf(*field, *b.record));
    case NumberText:
    case ItemText: return a.text().compare(b.text());
    default: return 0;
  }
}

}  // namespace GW
