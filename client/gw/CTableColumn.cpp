#include "gw/CTableColumn.h"

namespace GW {

using rdservice::EFieldFormat;
using rdservice::EFieldType;

namespace {

bool isCode(const rdservice::CFieldDes& field) {
  return field.type == EFieldType::Char || field.format == EFieldFormat::Enum || field.format == EFieldFormat::Date;
}

bool isText(const rdservice::CFieldDes& field) {
  return field.type == EFieldType::Account || field.type == EFieldType::Text || field.type == EFieldType::Interned;
}

}  // namespace

Qt::Alignment alignmentOf(const rdservice::CFieldDes& field) {
  if (isCode(field)) return Qt::AlignCenter;
  return Qt::AlignVCenter | (isText(field) ? Qt::AlignLeft : Qt::AlignRight);
}

QString sampleTextOf(const CTableColumn& column) {
  if (column.field == nullptr) return QStringLiteral("000000");
  switch (column.field->format) {
    case EFieldFormat::Enum: return QString::fromUtf8("四字宽度");
    case EFieldFormat::Date: return QStringLiteral("0000-00-00");
    case EFieldFormat::Volume: return QStringLiteral("000,000,000");
    case EFieldFormat::Amount: return QStringLiteral("0,000,000,000.00");
    case EFieldFormat::Plain: break;
  }
  switch (column.field->type) {
    case EFieldType::Account: return QStringLiteral("000000000000");
    case EFieldType::Interned: return QString::fromUtf8("六个字的宽度");
    case EFieldType::Text: return QStringLiteral("000000000000");
    case EFieldType::Char: return QStringLiteral("0");
    default: return QStringLiteral("000000");
  }
}

}  // namespace GW
