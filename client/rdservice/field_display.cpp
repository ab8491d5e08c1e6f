#include "rdservice/CStructDes.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/TypeManager.h"
#include "rdservice/calendar_text.h"
#include "rdservice/number_text.h"
#include "rdservice/rdservice_enums.h"

#include <fmt/format.h>

#include <cassert>
#include <cmath>

namespace rdservice {

namespace {

std::string integerText(const CFieldDes& field, std::int64_t value) {
  switch (field.format) {
    case EFieldFormat::Enum:
      return TypeManager::getEnumItemName(field.enumType, static_cast<int>(value), TraderTypeStockCredit);
    case EFieldFormat::Date: return dateText(static_cast<std::int32_t>(value));
    case EFieldFormat::Volume: return groupedText(std::to_string(value));
    case EFieldFormat::Plain:
    case EFieldFormat::Amount: break;
  }
  return std::to_string(value);
}

std::string doubleText(const CFieldDes& field, double value) {
  if (!std::isfinite(value)) return "-";
  if (field.format != EFieldFormat::Amount) return fmt::format("{}", value);
  std::string text = fmt::format("{:.2f}", value);
  if (text == "-0.00") text.erase(0, 1);
  return groupedText(std::move(text));
}

std::string charText(const CFieldDes& field, char value) {
  return field.format == EFieldFormat::Enum ? integerText(field, static_cast<unsigned char>(value))
                                            : std::string(1, value);
}

}  // namespace

std::string fieldText(const CFieldDes& field, const IData& record) {
  switch (field.type) {
    case EFieldType::Account: {
      const auto& account = field.get<CAccountInfoPtr>(record);
      return account == nullptr ? std::string() : account->accountId;
    }
    case EFieldType::Text: return field.get<std::string>(record);
    case EFieldType::Interned: return field.get<CInternedText>(record).str();
    case EFieldType::Char: return charText(field, field.get<char>(record));
    case EFieldType::Int32: return integerText(field, field.get<std::int32_t>(record));
    case EFieldType::Int64: return integerText(field, field.get<std::int64_t>(record));
    case EFieldType::Double: return doubleText(field, field.get<double>(record));
  }
  assert(false);
  return {};
}

}  // namespace rdservice
