#pragma once

#include <QString>

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

/// The layout as one line without "|": record type, columns, and a checksum that shows whether anything was damaged.
QString writeLayout(int recordType, const std::vector<CColumnLayout>& columns);

/// In order of position; none when the text is damaged or of another record type.
std::optional<std::vector<CColumnLayout>> readLayout(const QString& text, int recordType);

}  // namespace GW
