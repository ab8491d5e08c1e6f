#pragma once

#include "gw/column_delegates.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace GW {

class CSharedRows;

/// What a delegate's cells are.
enum class ECellControl : unsigned char { Text, CheckBox, RadioButton, IntSpinBox, LineEdit };

/// What the engine and the view must know of a delegate. GUI thread; kind and rows are set once, at construction.
struct CDelegateControl {
  ECellControl kind = ECellControl::Text;
  int minimum = 0;  ///< kind IntSpinBox
  int maximum = 0;
  int step = 1;
  QPointer<QWidget> editor;                                       ///< while one of the column's cells is edited
  std::function<qint64(std::optional<qint64> value)> valueOrder;  ///< null: sorted by state, number or text
  std::shared_ptr<CSharedRows> rows;                              ///< where the table keeps the cells

  static CDelegateControl& of(CBaseTableColumnWidgetDelegate& delegate);
  static const CDelegateControl& of(const CBaseTableColumnWidgetDelegate& delegate);
};

}  // namespace GW
