#include "gw/table/CColumnSum.h"

#include "gw/table/CFieldReader.h"

#include "rdservice/number_text.h"

#include <fmt/format.h>

#include <string>

namespace GW {

using rdservice::EFieldFormat;
using rdservice::EFieldType;

bool CColumnSum::isSummable(const CTableColumn& column) {
  if (column.delegate) return false;
  if (column.field == nullptr) return true;
  switch (column.field->format) {
    case EFieldFormat::Volume:
    case EFieldFormat::Amount: return true;
    case EFieldFormat::Plain: return column.field->type == EFieldType::Double;
    case EFieldFormat::Enum:
    case EFieldFormat::Date: break;
  }
  return false;
}

void CColumnSum::change(const CTableColumn& column, const CCell& cell, int sign) {
  if (column.field == nullptr) {
    m_sum.changeUnits(cell.value(), sign);
    return;
  }
  const rdservice::IData& record = *cell.record;
  switch (column.field->type) {
    case EFieldType::Int32: m_sum.changeUnits(column.field->get<std::int32_t>(record), sign); break;
    case EFieldType::Int64: m_sum.changeUnits(column.field->get<std::int64_t>(record), sign); break;
    case EFieldType::Double: m_sum.change(column.field->get<double>(record), sign); break;
    default: break;
  }
}

void CColumnSum::replace(const CTableColumn& column, const CCell& before, const CCell& after) {
  const bool isDouble = column.field != nullptr && column.field->type == EFieldType::Double;
  if (isDouble && column.field->get<double>(*before.record) == column.field->get<double>(*after.record)) return;
  subtract(column, before);
  add(column, after);
}

void CColumnSum::addAll(const CTableColumn& column, const std::vector<rdservice::IDataPtr>& records,
                        const CItemColumn* items, std::size_t first) {
  if (first >= records.size()) return;
  if (column.field == nullptr || column.field->type == EFieldType::Int32) {
    for (std::size_t slot = first; slot < records.size(); ++slot)
      add(column, {records[slot].get(), items, static_cast<int>(slot)});
    return;
  }
  const CFieldReader reader(*column.field, *records[first]);
  if (column.field->type == EFieldType::Double)
    reader.forEach<double>(records, first, records.size(), [this](double amount) { m_sum.change(amount, 1); });
  else if (column.field->type == EFieldType::Int64)
    reader.forEach<std::int64_t>(records, first, records.size(),
                                 [this](std::int64_t volume) { m_sum.changeUnits(volume, 1); });
}

QString CColumnSum::text(const CTableColumn& column) const {
  if (!m_sum.isKnown()) return QStringLiteral("-");
  if (column.field == nullptr || column.field->type != EFieldType::Double)
    return QString::fromStdString(rdservice::groupedText(fmt::to_string(m_sum.units())));
  constexpr std::int64_t CENTS = 100;
  constexpr std::int64_t PARTS_OF_CENT = rdservice::CExactSum::PARTS / CENTS;
  const std::int64_t half = PARTS_OF_CENT / 2;
  rdservice::CExactSum::CUnits units = m_sum.units();
  const std::int64_t parts = m_sum.parts();
  const bool isNegative = units < 0 || parts < 0;
  std::int64_t cents = ((isNegative ? -parts : parts) + half) / PARTS_OF_CENT;
  units = (isNegative ? -units : units) + cents / CENTS;
  cents %= CENTS;
  const char* sign = isNegative && (units != 0 || cents != 0) ? "-" : "";
  return QString::fromStdString(rdservice::groupedText(fmt::format("{}{}.{:02}", sign, units, cents)));
}

}  // namespace GW
