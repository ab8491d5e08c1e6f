#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace GW {

/// One column of a saved layout.
struct CColumnLayout {
  int number;    ///< field number; a plain column has a negative number
  int width;     ///< pixels, 1 to 10,000
  int position;  ///< from the left, hidden columns included
  bool isHidden;
};

struct CSortLayout {
  int number;
  bool isDescending;
};

struct CFilterLayout {
  int number;
  QStringList texts;  ///< accepted ones
};

struct CTableLayout {
  std::vector<CColumnLayout> columns;  ///< read: in order of position
  std::vector<CSortLayout> sort;       ///< the most significant first
  std::vector<CFilterLayout> filters;
};

/// The layout as one line without "|": record type, columns, sort order, filters, and a checksum that shows whether
/// anything was damaged. A filter of more than 1,000 texts is left out.
QString writeLayout(int recordType, const CTableLayout& layout);

/// The text with the checksum that fits what stands before its last separator.
QString sealLayout(const QString& text);

/// None when the text is damaged or of another record type.
std::optional<CTableLayout> readLayout(const QString& text, int recordType);

}  // namespace GW
