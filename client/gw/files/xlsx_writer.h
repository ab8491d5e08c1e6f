#pragma once

#include "gw/files/table_reading.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace GW {

/// Writes one sheet of texts, as a whole or not at all. Any thread. False when it was not written or was cancelled.
bool writeXlsx(const QString& path, const QList<QStringList>& rows, const CCancelFlag& isCancelled);

}  // namespace GW
