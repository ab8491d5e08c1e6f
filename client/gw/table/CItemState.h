#pragma once

#include <QString>

#include <optional>

namespace GW {

/// State of one cell that is not a record's field: of a delegate's cell or of an added column. A cell that nobody has
/// set has the state of a default constructed one.
struct CItemState {
  QString text;
  bool visible = true;
  bool enabled = true;
  bool checked = false;
  std::optional<qint64> value;

  friend bool operator==(const CItemState& a, const CItemState& b) {
    return a.visible == b.visible && a.enabled == b.enabled && a.checked == b.checked && a.value == b.value &&
           a.text == b.text;
  }
};

}  // namespace GW
