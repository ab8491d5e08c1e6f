#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

// Single rows of the counter's tables, inside the caller's transaction. A failing statement leaves an `error`: its text
// and the database's complaint.

/// Inserts the record, or replaces that with its key.
bool upsertRow(const CSqlConnection& connection, const rdservice::IData& record, std::string& error);

/// The records of the type in the rows that `condition` ("WHERE ... ORDER BY ...", with a mark for each of `values`)
/// selects. Their account is `account`. Stops behind the first record for which `isEnough`, when given, says true.
std::vector<rdservice::IDataPtr> selectRows(const CSqlConnection& connection, int typeId, const QString& condition,
                                            const std::vector<QVariant>& values,
                                            const rdservice::CAccountInfoPtr& account, std::string& error,
                                            const std::function<bool(const rdservice::IData&)>& isEnough = nullptr);

/// The one value that a statement selects; null when it selects none.
QVariant selectValue(const CSqlConnection& connection, const QString& statement, const std::vector<QVariant>& values,
                     std::string& error);

}  // namespace counter
