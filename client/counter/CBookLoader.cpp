#include "counter/CBookLoader.h"

#include "counter/CBookContext.h"
#include "counter/CBookFile.h"
#include "counter/CSqlConnection.h"
#include "counter/record_kinds.h"

#include <QFile>

#include <algorithm>
#include <cassert>
#include <utility>

namespace counter {

namespace {

/// Loads every file into tables made anew; the faults go to the context.
void loadFiles(const std::string& folder, const std::string& databasePath, CBookContext& context) {
  const CSqlConnection connection(databasePath, CSqlConnection::EOldTables::Accept);
  std::string error = connection.error();
  if (error.empty()) {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    if (error.empty() && connection.recreateTables(error)) {
      const auto& kinds = recordKinds();
      const bool complete = std::all_of(kinds.begin(), kinds.end(), [&](const CRecordKind& kind) {
        return kind.file == EBookFile::None || CBookFile(kind, context, connection).load(folder);
      });
      if (complete && context.result().isLoaded()) transaction.commit(error);
    }
  }
  if (!error.empty()) context.addError(databasePath, 0, 0, error);
}

}  // namespace

CBookLoader::CBookLoader(std::string folder, QDate today) : m_folder(std::move(folder)), m_today(today) {
  assert(today.isValid());
}

CBookResult CBookLoader::load(const std::string& databasePath) const {
  const std::atomic<bool> never{false};
  return load(databasePath, never);
}

CBookResult CBookLoader::load(const std::string& databasePath, const std::atomic<bool>& giveUp) const {
  const auto path = QString::fromStdString(databasePath);
  const bool isNew = !QFile::exists(path);
  CBookContext context(m_today, giveUp);
  loadFiles(m_folder, databasePath, context);
  if (context.result().isLoaded()) return std::move(context.result());
  context.result().counts.clear();
  if (isNew) QFile::remove(path);
  return std::move(context.result());
}

std::string CBookError::text() const {
  return line == 0 ? file + ": " + message
                   : file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + message;
}

std::string CBookResult::errorText() const {
  std::string text;
  for (const auto& error : errors) text += error.text() + "\n";
  if (moreErrors > 0) text += "and " + std::to_string(moreErrors) + " more\n";
  return text;
}

}  // namespace counter
