#pragma once

#include <QColor>

namespace GW {

/// Colours of a table in the present theme.
struct CTableColors {
  QColor background;
  QColor alternate;
  QColor grid;
  QColor text;
  QColor disabledText;
  QColor selected;
  QColor current;     ///< frame of the current cell
  QColor currentRow;  ///< frame of the current row
  QColor header;
  QColor headerHover;
  QColor headerLine;
  QColor headerText;
  QColor mark;      ///< sort marks, and filter marks of filtered columns
  QColor idleMark;  ///< filter marks of columns without a filter
  QColor sums;
  QColor sumsText;

  static CTableColors load();
};

}  // namespace GW
