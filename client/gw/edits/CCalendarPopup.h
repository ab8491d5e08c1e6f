#pragma once

#include <QDate>
#include <QFrame>

#include <functional>

class QCalendarWidget;

namespace GW {

/// A calendar below the field that it fills. Closes, and deletes itself, when a day is chosen, on Escape and on a press
/// elsewhere.
class CCalendarPopup : public QFrame {
 public:
  using CChosen = std::function<void(const QDate& date)>;

  /// An invalid `maximum`: no limit. `chosen` is called after the calendar has closed, and not after `field` has gone.
  CCalendarPopup(QWidget* field, const QDate& date, const QDate& maximum, CChosen chosen);

  /// Shows it, with the keyboard on its days.
  void open();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void setLook();
  void choose(const QDate& date);

  QWidget* m_field;
  QCalendarWidget* m_calendar;
  CChosen m_chosen;
};

}  // namespace GW
