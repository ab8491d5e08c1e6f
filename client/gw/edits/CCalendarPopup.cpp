#include "gw/edits/CCalendarPopup.h"

#include "gw/CUiResource.h"

#include <QCalendarWidget>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTextCharFormat>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace GW {

CCalendarPopup::CCalendarPopup(QWidget* field, const QDate& date, const QDate& maximum, CChosen chosen)
    : QFrame(field, Qt::Popup), m_field(field), m_calendar(new QCalendarWidget(this)), m_chosen(std::move(chosen)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setAccessibleName(field->accessibleName());
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(1, 1, 1, 1);
  layout->addWidget(m_calendar);
  m_calendar->setLocale(QLocale(QLocale::Chinese, QLocale::China));
  m_calendar->setFirstDayOfWeek(Qt::Monday);
  m_calendar->setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
  m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  m_calendar->setDateEditEnabled(false);  // the field is for typing
  if (maximum.isValid()) m_calendar->setMaximumDate(maximum);
  m_calendar->setSelectedDate(date);
  m_calendar->setAccessibleName(field->accessibleName());
  setLook();
  connect(m_calendar, &QCalendarWidget::clicked, this, [this](const QDate& day) { choose(day); });
  connect(m_calendar, &QCalendarWidget::activated, this, [this](const QDate& day) { choose(day); });
}

void CCalendarPopup::setLook() {
  QTextCharFormat header;
  header.setBackground(CUiResource::getColor(QStringLiteral("clr_table_header")));
  header.setForeground(CUiResource::getColor(QStringLiteral("clr_table_header_text")));
  m_calendar->setHeaderTextFormat(header);
  QTextCharFormat day;  // weekends like other days, instead of a red that no theme has
  day.setForeground(CUiResource::getColor(QStringLiteral("clr_table_text")));
  for (const Qt::DayOfWeek weekend : {Qt::Saturday, Qt::Sunday}) m_calendar->setWeekdayTextFormat(weekend, day);
  // Its own look for days that cannot be chosen is hardly to be seen; there are no months after that one.
  day.setForeground(CUiResource::getColor(QStringLiteral("clr_table_disabled_text")));
  const QDate last = m_calendar->maximumDate();
  for (QDate late = last.addDays(1); late.month() == last.month(); late = late.addDays(1))
    m_calendar->setDateTextFormat(late, day);
}

void CCalendarPopup::open() {
  layout()->activate();
  resize(sizeHint());
  const QRect screen = m_field->screen()->availableGeometry();
  const QRect field(m_field->mapToGlobal(QPoint()), m_field->size());
  const bool hasRoomBelow = field.bottom() + 1 + height() <= screen.bottom() + 1;
  move(std::max(screen.left(), std::min(field.left(), screen.right() + 1 - width())),
       hasRoomBelow ? field.bottom() + 1 : std::max(screen.top(), field.top() - height()));
  show();
  m_calendar->setFocus(Qt::PopupFocusReason);
}

void CCalendarPopup::choose(const QDate& date) {
  const CChosen chosen = std::move(m_chosen);
  m_chosen = nullptr;  // a double click chooses twice
  const QPointer<QWidget> field = m_field;
  close();
  if (field && chosen) chosen(date);
}

void CCalendarPopup::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(CUiResource::getColor(QStringLiteral("clr_btn_border")));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CCalendarPopup::mousePressEvent(QMouseEvent* event) {
  // A press on the field only closes it; handed on to the field's button it would open it again.
  setAttribute(Qt::WA_NoMouseReplay, m_field->rect().contains(m_field->mapFromGlobal(event->globalPos())));
  QFrame::mousePressEvent(event);
}

}  // namespace GW
