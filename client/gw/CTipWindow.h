#pragma once

#include "gw/CUiResource.h"

#include <QTextDocument>
#include <QTimer>
#include <QWidget>

namespace GW {

/// The window of a tip, below its widget or, without room there, above. Deletes itself when its time is over, when
/// what the widget stands in is hidden or its window moved, and when the user types or presses a mouse button.
class CTipWindow : public QWidget, public CUiResourceChangeHandler {
 public:
  /// `kind`: `CMessageTip::EKind`; `maxWidth`: pixels.
  CTipWindow(QWidget* widget, const QString& text, int kind, int maxWidth);

  void showFor(int seconds);
  const QTimer& time() const { return m_time; }

  bool eventFilter(QObject* watched, QEvent* event) override;
  void onUiResourceChanged() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  QColor color(const char* part) const;

  const int m_kind;
  QTextDocument m_document;
  QTimer m_time;
};

}  // namespace GW
