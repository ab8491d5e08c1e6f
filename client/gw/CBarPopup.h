#pragma once

#include <QFrame>

class QAbstractButton;

namespace GW {

/// The items of a toolbar that found no room in it, below one another. Opens below its button, closes on Escape and on
/// a press elsewhere. A window, but the child of the bar, so that what its items report reaches the bar's owner.
class CBarPopup : public QFrame {
 public:
  CBarPopup(QAbstractButton* button, QWidget* bar);

  /// Shows it, with the keyboard on its first item.
  void open();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QAbstractButton* m_button;
};

}  // namespace GW
