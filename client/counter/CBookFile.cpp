#include "counter/CBookFile.h"

#include "counter/CBookContext.h"
#include "counter/CSqlConnection.h"
#include "counter/record_kinds.h"
#include "rdservice/field_text.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CFieldDes;
using rdservice::CInternedText;
using rdservice::IData;
using rdservice::IDataPtr;

std::string fieldNames(const rdservice::CStructDes& des) {
  std::vector<std::string> names;
  for (const auto& field : des) names.emplace_back(field.name);
  return fmt::format("{}", fmt::join(names, ", "));
}

}  // namespace

CBookFile::CBookFile(const CRecordKind& kind, CBookContext& context, const CSqlConnection& connection)
    : m_kind(kind), m_context(context), m_table(kind), m_name(kind.fileName()), m_insert(connection.makeQuery()) {}

bool CBookFile::load(const std::string& folder) {
  QFile file(QString::fromStdString(folder + "/" + m_name));
  const QFileInfo info(file);
  if (m_kind.file == EBookFile::Optional && !info.exists() && !info.isSymLink()) {
    m_context.result().counts.push_back({m_kind.des.name(), 0});
    return true;
  }
  if (info.exists() && !info.isFile()) {
    failFile("is not a regular file; expected a CSV file");
    return true;
  }
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
    failFile("cannot be opened (" + file.errorString().toStdString() + "); expected a CSV file in the book's folder");
    return true;
  }
  if (!m_insert.prepare(m_table.insertStatement())) {
    failFile(sqlErrorText(m_insert));
    return false;
  }
  CCsvReader reader(file);
  if (readHeader(reader) && !readRows(reader)) return false;
  m_context.result().counts.push_back({m_kind.des.name(), m_count});
  return true;
}

bool CBookFile::readHeader(CCsvReader& reader) {
  const auto row = reader.next();
  if (row != CCsvReader::ERow::Cells) {
    const bool isEmpty = row == CCsvReader::ERow::End;
    const CCsvCell place{{}, isEmpty ? 1 : reader.error().line, isEmpty ? 1 : reader.error().column};
    fail(place,
         isEmpty ? "the file is empty; expected a header with " + fieldNames(m_kind.des) : reader.error().message);
    m_context.setIncomplete(m_kind.des.typeId());
    return false;
  }
  bool good = true;
  const auto refuse = [&](const CCsvCell& cell, std::string message) {
    fail(cell, std::move(message));
    good = false;
  };
  for (const auto& cell : reader.cells()) {
    const auto* const field = m_kind.des.fieldByName(cell.text);
    if (field == nullptr)
      refuse(cell, fmt::format("unknown column \"{}\"; expected one of {}", cell.text, fieldNames(m_kind.des)));
    else if (std::find(m_columns.begin(), m_columns.end(), field) != m_columns.end())
      refuse(cell, fmt::format("column \"{}\" stands here again; expected each column once", cell.text));
    m_columns.push_back(field);
  }
  for (const char* name : m_kind.required)
    if (std::find(m_columns.begin(), m_columns.end(), m_kind.des.fieldByName(name)) == m_columns.end())
      refuse(reader.cells().front(),
             fmt::format("column \"{}\" is missing; expected at least {}", name, fmt::join(m_kind.required, ", ")));
  if (!good) m_context.setIncomplete(m_kind.des.typeId());
  return good;
}

bool CBookFile::readRows(CCsvReader& reader) {
  for (;;) {
    if (m_context.isGivenUp()) {
      failFile("loading was given up");
      return false;
    }
    const auto row = reader.next();
    if (row == CCsvReader::ERow::End) return true;
    if (row == CCsvReader::ERow::Error) {
      fail({{}, reader.error().line, reader.error().column}, reader.error().message);
      m_context.setIncomplete(m_kind.des.typeId());
      continue;
    }
    const auto& cells = reader.cells();
    if (cells.size() != m_columns.size()) {
      fail(cells.size() > m_columns.size() ? cells[m_columns.size()] : cells.back(),
           fmt::format("{} cells; expected {} as in the header", cells.size(), m_columns.size()));
      m_context.setIncomplete(m_kind.des.typeId());
      continue;
    }
    const auto record = readRecord(cells);
    if (record != nullptr && !insert(*record, cells)) return false;
  }
}

IDataPtr CBookFile::readRecord(const std::vector<CCsvCell>& cells) {
  auto record = m_kind.make();
  bool good = true;
  bool keyRead = true;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const bool read = readCell(*m_columns[i], cells[i], *record);
    const auto isField = [&](const char* name) { return std::strcmp(name, m_columns[i]->name) == 0; };
    if (!read && std::any_of(m_kind.key.begin(), m_kind.key.end(), isField)) keyRead = false;
    good = good && read;
  }
  if (keyRead)
    m_context.addReferent(record);
  else
    m_context.setIncomplete(m_kind.des.typeId());
  if (keyRead && m_kind.ofInstrument && !checkInstrument(cells, *record)) good = false;
  if (!good) return nullptr;
  setPosition(*record);
  return record;
}

bool CBookFile::readCell(const CFieldDes& field, const CCsvCell& cell, IData& record) {
  if (cell.text.empty()) {
    const bool good = !isRequired(field.name);
    if (!good) fail(cell, fmt::format("{}: expected a value, got nothing", field.name));
    return good;
  }
  if (field.type == rdservice::EFieldType::Account) {
    auto account = m_context.account(cell.text);
    if (account == nullptr && !m_context.isIncomplete(rdservice::RecordAccountInfo))
      fail(cell, fmt::format("{}: expected an account id of accounts.csv, got \"{}\"", field.name, cell.text));
    field.edit<CAccountInfoPtr>(record) = std::move(account);
    return field.get<CAccountInfoPtr>(record) != nullptr;
  }
  std::string error;
  if (parseField(field, cell.text, record, error, m_context.parsing())) return true;
  fail(cell, std::move(error));
  return false;
}

bool CBookFile::checkInstrument(const std::vector<CCsvCell>& cells, IData& record) {
  const auto text = [&](const char* field) -> const std::string& {
    return m_kind.des.fieldByName(field)->get<CInternedText>(record).str();
  };
  const auto key = rdservice::makeStockKey(text("exchange"), text("code"));
  const auto* const known = m_context.instrumentName(key);
  if (known == nullptr) {
    if (!m_context.isIncomplete(rdservice::RecordInstrumentInfo))
      fail(cellOf("code", cells),
           fmt::format("exchange, code: expected an instrument of instruments.csv, got \"{}\"", key));
    return false;
  }
  if (const auto* const name = m_kind.des.fieldByName("name");
      name != nullptr && name->get<CInternedText>(record).empty())
    name->edit<CInternedText>(record) = *known;
  return true;
}

void CBookFile::setPosition(IData& record) {
  if (m_kind.position == nullptr) return;
  auto& position = m_kind.des.fieldByName(m_kind.position)->edit<std::string>(record);
  if (position.empty())
    position = m_context.nextPosition(m_kind.des.name(), *m_kind.accountField()->get<CAccountInfoPtr>(record));
}

bool CBookFile::insert(const IData& record, const std::vector<CCsvCell>& cells) {
  m_table.bind(m_insert, record);
  if (m_insert.exec()) {
    ++m_count;
    return true;
  }
  const auto complaint = m_insert.lastError().databaseText().toStdString();
  if (complaint.find("UNIQUE") == std::string::npos) {
    failFile(sqlErrorText(m_insert));
    return false;
  }
  if (m_kind.position != nullptr && complaint.find(m_kind.position) != std::string::npos)
    fail(cellOf(m_kind.position, cells),
         fmt::format("{}: expected a position that no other record of the account has", m_kind.position));
  else
    fail(cellOf(m_kind.key.front(), cells),
         fmt::format("{}: expected values that no record before has", fmt::join(m_kind.key, ", ")));
  return true;
}

bool CBookFile::isRequired(const char* field) const {
  return std::any_of(m_kind.required.begin(), m_kind.required.end(),
                     [field](const char* name) { return std::strcmp(name, field) == 0; });
}

const CCsvCell& CBookFile::cellOf(const char* field, const std::vector<CCsvCell>& cells) const {
  const auto found = std::find(m_columns.begin(), m_columns.end(), m_kind.des.fieldByName(field));
  return found == m_columns.end() ? cells.front() : cells[static_cast<std::size_t>(found - m_columns.begin())];
}

void CBookFile::fail(const CCsvCell& cell, std::string message) {
  m_context.addError(m_name, cell.line, cell.column, std::move(message));
}

void CBookFile::failFile(std::string message) {
  m_context.addError(m_name, 0, 0, std::move(message));
  m_context.setIncomplete(m_kind.des.typeId());
}

}  // namespace counter
