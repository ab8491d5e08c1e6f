#pragma once

#include "host_api.h"

#include <QString>

class QWidget;

namespace GW {

/// A short text that appears beside a control and goes by itself. GUI thread.
class HOST_API CMessageTip {
 public:
  /// Where the tip stands beside the control.
  enum EPlace : int { Below = 65 };
  /// What the tip tells, which decides its colours.
  enum EKind : int { Warning = 2, Error = 3 };

  /// Shows `text` at `widget` in place of the tip shown before. `seconds`: how long it stays; it also goes with what
  /// the widget stands in, and when the user types or clicks. `maxWidth`: pixels after which the text is wrapped. Does
  /// nothing for a widget that is not there or not visible.
  static void showTip(QWidget* widget, int place, const QString& text, int kind, int seconds, int maxWidth);
};

}  // namespace GW
