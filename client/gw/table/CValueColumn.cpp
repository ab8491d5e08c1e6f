#include "gw/table/CValueColumn.h"

#include "gw/table/CFieldReader.h"
#include "gw/table/CTextOrder.h"
#include "gw/table/cell_text.h"
#include "gw/table/slot_sort.h"
#include "gw/table/vector_growth.h"

#include "rdservice/CInternedText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace GW {

using rdservice::EFieldFormat;
using rdservice::EFieldType;

namespace {

/// Amounts are shown with two decimals, so that those which differ in others look alike. Rounds as the text does: the
/// number itself, not its product, and an exact half to the even cent.
std::uint64_t amountRaw(double amount) {
  constexpr double CENTS = 100;
  constexpr double LIMIT = 1e13;  // below, a half cent is a number too
  if (!(std::fabs(amount) < LIMIT)) return sortable(amount);
  const double below = std::floor(amount * CENTS);
  const auto cents = static_cast<std::int64_t>(below);
  const double beyondHalf = std::fma(amount, CENTS, -(below + 0.5));  // its sign is exact
  return sortable(cents + (beyondHalf > 0 || (beyondHalf == 0 && cents % 2 != 0) ? 1 : 0));
}

std::uint64_t numberRaw(double value, EFieldFormat format) {
  if (!std::isfinite(value)) return sortable(std::numeric_limits<double>::infinity());  // all show alike
  return format == EFieldFormat::Amount ? amountRaw(value) : sortable(value);
}

/// Of numbers the low bits differ, of addresses those above.
std::size_t recentPlace(std::uint64_t raw) { return static_cast<std::size_t>(raw ^ raw >> 5 ^ raw >> 45); }

std::uint64_t pooledRaw(rdservice::CInternedText text) { return reinterpret_cast<std::uintptr_t>(&text.str()); }

}  // namespace

CValueColumn::CValueColumn(const CTableColumn& column)
    : m_column(column),
      m_isText(column.field != nullptr &&
               (column.field->type == EFieldType::Account || column.field->type == EFieldType::Text)) {}

std::uint64_t CValueColumn::rawOf(const rdservice::IData& record) const {
  const rdservice::CFieldDes& field = *m_column.field;
  switch (field.type) {
    case EFieldType::Char: return sortable(std::int64_t{field.get<char>(record)});
    case EFieldType::Int32: return sortable(std::int64_t{field.get<std::int32_t>(record)});
    case EFieldType::Int64: return sortable(field.get<std::int64_t>(record));
    case EFieldType::Double: return numberRaw(field.get<double>(record), field.format);
    case EFieldType::Interned: return pooledRaw(field.get<rdservice::CInternedText>(record));
    case EFieldType::Account:
    case EFieldType::Text: break;
  }
  return 0;
}

bool CValueColumn::fill(const std::vector<rdservice::IDataPtr>& records, const CItemColumn* items, std::size_t rows) {
  growFor(codes, records.size());
  const std::size_t end = std::min(records.size(), codes.size() + rows);
  if (hasRaw() && codes.size() < end) fillRaw(records, end);
  while (codes.size() < end) {
    const std::size_t slot = codes.size();
    codes.push_back(take({records[slot].get(), items, static_cast<int>(slot)}, records[slot]));
  }
  return codes.size() == records.size();
}

void CValueColumn::fillRaw(const std::vector<rdservice::IDataPtr>& records, std::size_t end) {
  const rdservice::CFieldDes& field = *m_column.field;
  const CFieldReader reader(field, *records[codes.size()]);
  const auto fillWith = [&](auto sample, auto raw) {
    std::size_t slot = codes.size();
    codes.resize(end);
    reader.forEach<decltype(sample)>(records, slot, end, [&](const auto& value) {
      const std::uint32_t code = findRaw(raw(value), records[slot]);
      ++m_values[code].cells;
      codes[slot++] = code;
    });
  };
  const auto integerRaw = [](auto value) { return sortable(std::int64_t{value}); };
  switch (field.type) {
    case EFieldType::Char: return fillWith(char(), integerRaw);
    case EFieldType::Int32: return fillWith(std::int32_t(), integerRaw);
    case EFieldType::Int64: return fillWith(std::int64_t(), integerRaw);
    case EFieldType::Double:
      return fillWith(double(), [&field](double value) { return numberRaw(value, field.format); });
    case EFieldType::Interned: return fillWith(rdservice::CInternedText(), pooledRaw);
    case EFieldType::Account:
    case EFieldType::Text: break;
  }
}

std::uint32_t CValueColumn::take(const CCell& cell, const rdservice::IDataPtr& record) {
  const std::uint32_t code = find(cell, record);
  ++m_values[code].cells;
  return code;
}

void CValueColumn::release(std::uint32_t code) {
  --m_values[code].cells;
  dropIfUnused(code);
}

std::uint32_t CValueColumn::findRaw(std::uint64_t raw, const rdservice::IDataPtr& record) {
  CRecent& recent = m_recent[recentPlace(raw) % m_recent.size()];
  if (recent.isUsed && recent.raw == raw) return recent.code;
  const auto [known, isNew] = m_byRaw.try_emplace(raw, 0);
  if (isNew) {
    CValue value;
    value.raw = raw;
    value.sample = record;
    known->second = add(std::move(value));
  }
  recent = {raw, known->second, true};
  return known->second;
}

std::uint32_t CValueColumn::find(const CCell& cell, const rdservice::IDataPtr& record) {
  if (hasRaw()) return findRaw(rawOf(*cell.record), record);
  CValue value;
  std::string buffer;
  const auto [entry, isNew] = m_byText.try_emplace(textOf(cell, buffer), 0);
  if (!isNew) return entry->second;
  value.text = &entry->first;
  return entry->second = add(std::move(value));
}

/// Only where nothing has to be converted it is the record's own.
const std::string& CValueColumn::textOf(const CCell& cell, std::string& buffer) const {
  if (m_isText && !m_column.delegate && m_column.field->type == EFieldType::Text)
    return m_column.field->get<std::string>(*cell.record);
  return buffer = cellText(m_column, cell).toStdString();
}

const std::string& CValueColumn::orderText(const CValue& value) const {
  static const std::string none;
  if (!hasRaw()) return value.text == nullptr ? none : *value.text;
  return value.sample ? m_column.field->get<rdservice::CInternedText>(*value.sample).str() : none;
}

std::uint32_t CValueColumn::add(CValue value) {
  std::uint32_t code = 0;
  if (m_free.empty()) {
    code = static_cast<std::uint32_t>(m_values.size());
    m_values.emplace_back();
  } else {
    code = m_free.back();
    m_free.pop_back();
  }
  value.isUsed = true;
  m_values[code] = std::move(value);
  m_values[code].isAccepted = !m_acceptedTexts.isEmpty() && m_acceptedTexts.contains(text(code));
  return code;
}

/// An accepted value is remembered, so that a row that takes it again is shown again.
void CValueColumn::dropIfUnused(std::uint32_t code) {
  CValue& value = m_values[code];
  if (value.cells > 0 || value.isAccepted || !value.isUsed || m_holders > 0) return;
  if (hasRaw()) {
    m_byRaw.erase(value.raw);
    m_recent[recentPlace(value.raw) % m_recent.size()].isUsed = false;
  } else {
    m_byText.erase(m_byText.find(*value.text));
  }
  value = CValue();
  m_free.push_back(code);
}

QString CValueColumn::text(std::uint32_t code) const {
  const CValue& value = m_values[code];
  if (!hasRaw()) return QString::fromStdString(orderText(value));
  return value.sample ? cellText(m_column, {value.sample.get(), nullptr, 0}) : QString();
}

/// Texts that share a key.
struct CValueColumn::CTies : ITieBreaker {
  explicit CTies(const CValueColumn& values) : all(values) {}
  bool decides(std::uint64_t key) const override { return CTextOrder::isAmbiguous(key); }
  bool isBefore(int code, int other) const override {
    const int order = textOf(code).compare(textOf(other));
    return order != 0 ? order < 0 : code < other;
  }
  const std::string& textOf(int code) const { return all.orderText(all.m_values[static_cast<std::size_t>(code)]); }

  const CValueColumn& all;
};

std::vector<std::uint32_t> CValueColumn::ordered() const {
  const bool isNumber = hasRaw() && m_column.field->type != EFieldType::Interned;
  std::vector<int> used;
  for (std::size_t code = 0; code < m_values.size(); ++code) {
    if (m_values[code].cells > 0) used.push_back(static_cast<int>(code));
  }
  CTextOrder texts;
  std::vector<std::uint64_t> keys(m_values.size());
  do {
    for (const int code : used) {
      const CValue& value = m_values[static_cast<std::size_t>(code)];
      keys[static_cast<std::size_t>(code)] = isNumber ? value.raw : texts.key(orderText(value));
    }
  } while (texts.renumberIfNeeded());
  const CTies ties(*this);
  COrderBy by;
  by.keys = &keys;
  if (!isNumber) by.ties = &ties;
  sortSlots(used, by);
  return {used.begin(), used.end()};
}

std::vector<char> CValueColumn::acceptedCodes() const {
  std::vector<char> accepted(m_values.size());
  for (std::size_t code = 0; code < m_values.size(); ++code)
    accepted[code] = !m_isFiltering || m_values[code].isAccepted ? 1 : 0;
  return accepted;
}

void CValueColumn::acceptAll() {
  m_isFiltering = false;
  m_acceptedTexts.clear();
  for (std::uint32_t code = 0; code < m_values.size(); ++code) {
    m_values[code].isAccepted = false;
    dropIfUnused(code);
  }
}

void CValueColumn::accept(const QStringList& texts) {
  acceptAll();
  m_isFiltering = true;
  m_acceptedTexts = QSet<QString>(texts.begin(), texts.end());
  for (std::uint32_t code = 0; code < m_values.size(); ++code) {
    if (m_values[code].isUsed) m_values[code].isAccepted = m_acceptedTexts.contains(text(code));
  }
}

void CValueColumn::acceptCodes(const std::vector<std::uint32_t>& wanted) {
  std::vector<std::uint32_t> known;
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(known), [this](auto code) { return isKnown(code); });
  m_acceptedTexts.clear();
  m_isFiltering = true;
  for (CValue& value : m_values) value.isAccepted = false;
  for (const std::uint32_t code : known) m_values[code].isAccepted = true;
  for (std::uint32_t code = 0; code < m_values.size(); ++code) dropIfUnused(code);
}

void CValueColumn::hold(bool on) {
  m_holders = on ? m_holders + 1 : std::max(0, m_holders - 1);
  if (m_holders > 0) return;
  for (std::uint32_t code = 0; code < m_values.size(); ++code) dropIfUnused(code);
}

QStringList CValueColumn::accepted() const {
  QStringList texts = m_acceptedTexts.values();
  for (std::uint32_t code = 0; code < m_values.size(); ++code) {
    if (m_values[code].isAccepted && !m_acceptedTexts.contains(text(code))) texts.push_back(text(code));
  }
  texts.sort();
  return texts;
}

std::size_t CValueColumn::memory() const {
  constexpr std::size_t NODE = 48;  // of a hash entry, about
  return codes.capacity() * sizeof codes[0] + m_values.capacity() * sizeof(CValue) +
         (m_byRaw.size() + static_cast<std::size_t>(m_byText.size())) * NODE;
}

}  // namespace GW
