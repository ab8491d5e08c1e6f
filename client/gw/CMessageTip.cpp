#include "gw/CMessageTip.h"

#include "gw/CTipWindow.h"

#include "utils/threads.h"

#include <QPointer>

#include <algorithm>

namespace GW {

void CMessageTip::showTip(QWidget* widget, int, const QString& text, int kind, int seconds, int maxWidth) {
  utils::assertGui();
  static QPointer<CTipWindow> shown;  // child of what its widget stands in
  if (widget == nullptr || !widget->isVisible()) return;
  delete shown.data();
  shown = new CTipWindow(widget, text, kind, maxWidth);
  shown->showFor(std::max(1, seconds));
}

}  // namespace GW
