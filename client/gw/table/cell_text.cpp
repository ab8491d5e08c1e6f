#include "gw/table/cell_text.h"

#include "gw/delegates/CDelegateControl.h"
#include "rdservice/number_text.h"

#include <string>

namespace GW {

QString cellText(const CTableColumn& column, const CCell& cell) {
  if (column.delegate) {
    const ECellControl kind = CDelegateControl::of(*column.delegate).kind;
    const bool isBox = kind == ECellControl::CheckBox || kind == ECellControl::RadioButton;
    return isBox || !cell.isVisible() ? QString() : cell.text();
  }
  if (column.field != nullptr) return QString::fromStdString(rdservice::fieldText(*column.field, *cell.record));
  if (cell.hasValue()) return QString::fromStdString(rdservice::groupedText(std::to_string(cell.value())));
  return cell.text();
}

}  // namespace GW
