#pragma once

#include "gw/files/table_reading.h"

#include <QString>

#include <vector>

namespace GW {

class CZipFile;

/// Where an .xlsx keeps what its first visible sheet needs. Names of parts; empty where there is none.
struct CWorkbookParts {
  QString sheet;
  QString sharedStrings;
  QString styles;
  bool is1904 = false;  ///< days are counted from 1904
};

EReadResult findWorkbookParts(CZipFile& file, CWorkbookParts& parts, const CCancelFlag& isCancelled);

/// By the number of a cell's style: whether it shows numbers as dates.
EReadResult readDateStyles(CZipFile& file, const QString& name, std::vector<bool>& areDates,
                           const CCancelFlag& isCancelled);

}  // namespace GW
