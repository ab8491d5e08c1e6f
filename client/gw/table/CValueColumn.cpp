#include "gw/table/CValueColumn.h"

#include "gw/table/CTextOrder.h"
#include "gw/table/cell_text.h"

#include "rdservice/CInternedText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace GW {

using rdservice::EFieldFormat;
using rdservice::EFieldType;

namespace {

/// Amounts are shown with two decimals, so that those which differ in others look alike.
std::uint64_t amountRaw(double amount) {
  constexpr double CENTS = 100;
  constexpr double LIMIT = 1e15;
  if (std::isfinite(amount) && std::fabs(amount) < LIMIT) return sortable(std::int64_t{std::llround(amount * CENTS)});
  return sortable(amount);
}

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
    case EFieldType::Double: {
      const double value = field.get<double>(record);
      return field.format == EFieldFormat::Amount ? amountRaw(value) : sortable(value);
    }
    case EFieldType::Interned:
      return reinterpret_cast<std::uintptr_t>(&field.get<rdservice::CInternedText>(record).str());
    case EFieldType::Account:
    case EFieldType::Text: break;
  }
  return 0;
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

std::uint32_t CValueColumn::find(const CCell& cell, const rdservice::IDataPtr& record) {
  CValue value;
  if (hasRaw()) {
    value.raw = rawOf(*cell.record);
    const auto known = m_byRaw.find(value.raw);
    if (known != m_byRaw.end()) return known->second;
    value.sample = record;
    const std::uint32_t code = add(std::move(value));
    m_byRaw.emplace(m_values[code].raw, code);
    return code;
  }
  value.text = cellText(m_column, cell);
  const auto known = m_byText.constFind(value.text);
  if (known != m_byText.constEnd()) return *known;
  const QString key = value.text;
  const std::uint32_t code = add(std::move(value));
  m_byText.insert(key, code);
  return code;
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
  if (hasRaw())
    m_byRaw.erase(value.raw);
  else
    m_byText.remove(value.text);
  value = CValue();
  m_free.push_back(code);
}

QString CValueColumn::text(std::uint32_t code) const {
  const CValue& value = m_values[code];
  if (!hasRaw()) return value.text;
  return value.sample ? cellText(m_column, {value.sample.get(), nullptr, 0}) : QString();
}

std::vector<std::uint32_t> CValueColumn::ordered() const {
  std::vector<std::pair<std::uint64_t, std::uint32_t>> used;
  const bool isNumber = hasRaw() && m_column.field->type != EFieldType::Interned;
  CTextOrder texts;
  const auto gather = [&] {
    used.clear();
    for (std::uint32_t code = 0; code < m_values.size(); ++code) {
      if (m_values[code].cells == 0) continue;
      used.emplace_back(isNumber ? m_values[code].raw : texts.key(text(code).toStdString()), code);
    }
  };
  gather();
  if (texts.renumberIfNeeded()) gather();
  std::sort(used.begin(), used.end(), [this](const auto& a, const auto& b) {
    if (a.first != b.first) return a.first < b.first;
    return CTextOrder::isAmbiguous(a.first) ? text(a.second) < text(b.second) : a.second < b.second;
  });
  std::vector<std::uint32_t> inOrder;
  inOrder.reserve(used.size());
  for (const auto& [key, code] : used) inOrder.push_back(code);
  return inOrder;
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
