#include "counter/CSqlTable.h"

#include "counter/record_kinds.h"
#include "rdservice/CInternedText.h"

#include <QByteArray>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

#include <cassert>
#include <string_view>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CFieldDes;
using rdservice::CInternedText;
using rdservice::EFieldType;
using rdservice::IData;

const char* sqlType(EFieldType type) {
  switch (type) {
    case EFieldType::Account:
    case EFieldType::Text:
    case EFieldType::Interned:
    case EFieldType::Char: return "TEXT";
    case EFieldType::Int32:
    case EFieldType::Int64: return "INTEGER";
    case EFieldType::Double: return "REAL";
  }
  assert(false);
  return "";
}

/// Never a null text: the columns take none.
QVariant textValue(const std::string& text) {
  return text.empty() ? QVariant(QStringLiteral("")) : QVariant(QString::fromStdString(text));
}

QVariant value(const CFieldDes& field, const IData& record) {
  switch (field.type) {
    case EFieldType::Account: {
      const auto& account = field.get<CAccountInfoPtr>(record);
      return textValue(account == nullptr ? std::string() : account->getKey());
    }
    case EFieldType::Text: return textValue(field.get<std::string>(record));
    case EFieldType::Interned: return textValue(field.get<CInternedText>(record).str());
    case EFieldType::Char: return QString(QLatin1Char(field.get<char>(record)));
    case EFieldType::Int32: return field.get<std::int32_t>(record);
    case EFieldType::Int64: return QVariant(static_cast<qlonglong>(field.get<std::int64_t>(record)));
    case EFieldType::Double: return field.get<double>(record);
  }
  assert(false);
  return {};
}

qint64 number(const QVariant& stored) {
  return stored.userType() == QMetaType::LongLong ? *static_cast<const qint64*>(stored.constData())
                                                  : stored.toLongLong();
}

/// Fills a field from a column as `CSqlTable::selected` has it.
void setValue(const CFieldDes& field, IData& record, const QVariant& stored, const CAccountInfoPtr& account) {
  const auto text = [&stored](const QByteArray& utf8) {
    assert(stored.userType() == QMetaType::QByteArray || stored.isNull());
    return std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size()));
  };
  switch (field.type) {
    case EFieldType::Account: field.edit<CAccountInfoPtr>(record) = account; return;
    case EFieldType::Text: field.edit<std::string>(record) = text(stored.toByteArray()); return;
    case EFieldType::Interned: field.edit<CInternedText>(record) = CInternedText(text(stored.toByteArray())); return;
    case EFieldType::Char: {
      const qint64 unicode = number(stored);
      field.edit<char>(record) = QChar(unicode > 0xFF ? ushort(0) : static_cast<ushort>(unicode)).toLatin1();
      return;
    }
    case EFieldType::Int32: field.edit<std::int32_t>(record) = static_cast<std::int32_t>(number(stored)); return;
    case EFieldType::Int64: field.edit<std::int64_t>(record) = number(stored); return;
    case EFieldType::Double:
      field.edit<double>(record) =
          stored.userType() == QMetaType::Double ? *static_cast<const double*>(stored.constData()) : stored.toDouble();
      return;
  }
  assert(false);
}

QString tableName(const CRecordKind& kind) { return CSqlTable::column(kind.des.name()); }

}  // namespace

CSqlTable::CSqlTable(const CRecordKind& kind) : m_kind(kind) {}

QString CSqlTable::column(const char* field) { return QLatin1Char('"') + QLatin1String(field) + QLatin1Char('"'); }

QString CSqlTable::selected(const CFieldDes& field) {
  const QString stored = column(field.name);
  switch (field.type) {
    case EFieldType::Account: return QStringLiteral("NULL");
    case EFieldType::Text:
    case EFieldType::Interned: return QStringLiteral("CAST(%1 AS BLOB)").arg(stored);
    case EFieldType::Char: return QStringLiteral("unicode(%1)").arg(stored);
    default: return stored;
  }
}

QString CSqlTable::createStatement() const {
  QStringList fields;
  for (const auto& field : m_kind.des)
    fields << column(field.name) + QStringLiteral(" %1 NOT NULL").arg(QLatin1String(sqlType(field.type)));
  fields << QStringLiteral("UNIQUE (%1)").arg(keyColumns());
  if (m_kind.position != nullptr)
    fields << QStringLiteral("UNIQUE (%1, %2)").arg(column(m_kind.accountField()->name), column(m_kind.position));
  return QStringLiteral("CREATE TABLE %1 (%2)").arg(tableName(m_kind), fields.join(QStringLiteral(", ")));
}

QString CSqlTable::dropStatement() const { return QStringLiteral("DROP TABLE IF EXISTS %1").arg(tableName(m_kind)); }

QString CSqlTable::insertStatement() const {
  QStringList marks;
  for (std::size_t i = 0; i < m_kind.des.size(); ++i) marks << QStringLiteral("?");
  return QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
      .arg(tableName(m_kind), columns(), marks.join(QStringLiteral(", ")));
}

QString CSqlTable::upsertStatement() const {
  QStringList assignments;
  for (const auto& field : m_kind.des) assignments << QStringLiteral("%1 = excluded.%1").arg(column(field.name));
  return insertStatement() +
         QStringLiteral(" ON CONFLICT (%1) DO UPDATE SET %2").arg(keyColumns(), assignments.join(QStringLiteral(", ")));
}

QString CSqlTable::selectStatement() const {
  QStringList fields;
  for (const auto& field : m_kind.des) fields << selected(field);
  return QStringLiteral("SELECT %1 FROM %2").arg(fields.join(QStringLiteral(", ")), tableName(m_kind));
}

void CSqlTable::bind(QSqlQuery& query, const IData& record) const {
  int index = 0;
  for (const auto& field : m_kind.des) query.bindValue(index++, value(field, record));
}

void CSqlTable::read(const QSqlQuery& query, IData& record, const CAccountInfoPtr& account) const {
  int index = 0;
  for (const auto& field : m_kind.des) setValue(field, record, query.value(index++), account);
}

QString CSqlTable::columns() const {
  QStringList names;
  for (const auto& field : m_kind.des) names << column(field.name);
  return names.join(QStringLiteral(", "));
}

QString CSqlTable::keyColumns() const {
  QStringList names;
  for (const char* field : m_kind.key) names << column(field);
  return names.join(QStringLiteral(", "));
}

}  // namespace counter
