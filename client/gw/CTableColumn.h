#pragma once

#include "gw/column_delegates.h"
#include "rdservice/CStructDes.h"

#include <QString>

#include <memory>

namespace GW {

/// One column of a table; its id is its place in the list of columns. GUI thread.
struct CTableColumn {
  QString title;
  const rdservice::CFieldDes* field = nullptr;  ///< null: a plain column
  int number = 0;                               ///< field number; a plain column has a negative number of its own
  Qt::Alignment alignment = Qt::AlignCenter;
  int width = 0;  ///< pixels, also while hidden
  std::unique_ptr<CBaseTableColumnWidgetDelegate> delegate;
};

/// Numbers right, texts left, codes and dates centred.
Qt::Alignment alignmentOf(const rdservice::CFieldDes& field);

/// A text as wide as the column's usual content.
QString sampleTextOf(const CTableColumn& column);

}  // namespace GW
