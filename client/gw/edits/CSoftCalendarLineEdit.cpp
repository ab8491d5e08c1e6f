#include "gw/line_edits.h"

#include "gw/CUiResource.h"
#include "gw/edits/CCalendarPopup.h"
#include "gw/widget_events.h"

#include "utils/threads.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QRegularExpression>
#include <QValidator>

#include <algorithm>

namespace GW {

namespace {

// Texts for users.
constexpr const char* CHOOSE_NAME = "选择日期";
constexpr const char* NO_DATE = "不是有效的日期";
constexpr const char* TOO_LATE = "日期不能晚于 %1";

constexpr int WHOLE_DIGITS = 8;

/// Plain digits only, whatever the locale; digits of another width or script become plain ones.
class CDateValidator : public QValidator {
 public:
  using QValidator::QValidator;

  State validate(QString& text, int&) const override {
    for (QChar& c : text) {
      if (c.category() == QChar::Number_DecimalDigit)
        c = QChar(u'0' + c.digitValue());
      else if (c != u'-' && c != u' ')
        return Invalid;
    }
    return Acceptable;
  }
};

/// Of yyyy-MM-dd; invalid for anything else.
QDate dateOf(const QString& text) {
  static const QRegularExpression s_format(
      QRegularExpression::anchoredPattern(QStringLiteral("([0-9]{4})-([0-9]{2})-([0-9]{2})")));
  const QRegularExpressionMatch match = s_format.match(text);
  return match.hasMatch() ? QDate(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt())
                          : QDate();
}

}  // namespace

struct CSoftCalendarLineEdit::Private : public QObject, public CUiResourceChangeHandler {
  Private(int id, CSoftCalendarLineEdit* field);

  bool eventFilter(QObject* watched, QEvent* event) override;
  void onUiResourceChanged() override;
  /// Of what stands in the field.
  QDate validDate() const;
  void setByProgram(const QString& text);
  void onTextChanged();
  void onChosen(const QDate& chosen);
  void openCalendar();
  void updateMark();

  CSoftCalendarLineEdit* q;
  const int id;
  QLineEdit* edit;
  QAction* button;
  QPointer<CCalendarPopup> popup;  ///< child of the field; deletes itself when closed
  QDate maximum;
  QDate date;  ///< the last one reported or set
  bool isByProgram = false;
};

CSoftCalendarLineEdit::Private::Private(int i, CSoftCalendarLineEdit* field)
    : q(field), id(i), edit(new QLineEdit(field)), button(edit->addAction(QIcon(), QLineEdit::TrailingPosition)) {
  auto* const layout = new QHBoxLayout(q);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(edit);
  q->setFocusProxy(edit);
  edit->setLayoutDirection(Qt::LeftToRight);
  edit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);  // the field may be lower than a line edit
  edit->setValidator(new CDateValidator(edit));
  button->setText(QString::fromUtf8(CHOOSE_NAME));
  connect(button, &QAction::triggered, this, [this] { openCalendar(); });
  connect(edit, &QLineEdit::textChanged, this, [this] { onTextChanged(); });
  q->installEventFilter(this);
  edit->installEventFilter(this);
  onUiResourceChanged();
}

bool CSoftCalendarLineEdit::Private::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::Show:
      if (watched == q) edit->setAccessibleName(q->accessibleName());  // the one that has the focus
      break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      if (watched == edit) updateMark();
      break;
    case QEvent::KeyPress: {
      const auto* const key = static_cast<QKeyEvent*>(event);
      if (watched != edit || key->key() != Qt::Key_Down || key->modifiers() != Qt::AltModifier) break;
      openCalendar();
      return true;
    }
    default: break;
  }
  return false;
}

void CSoftCalendarLineEdit::Private::onUiResourceChanged() {
  button->setIcon(CUiResource::getImage(QStringLiteral("img_calendar")));
  updateMark();
}

QDate CSoftCalendarLineEdit::Private::validDate() const {
  const QDate typed = dateOf(edit->text());
  return maximum.isValid() && typed > maximum ? QDate() : typed;
}

void CSoftCalendarLineEdit::Private::setByProgram(const QString& text) {
  isByProgram = true;
  edit->setText(text);
  isByProgram = false;
  date = validDate();
  updateMark();
}

void CSoftCalendarLineEdit::Private::onTextChanged() {
  if (isByProgram) return;
  updateMark();
  const QDate now = validDate();
  if (now == date) return;
  date = now;
  q->deliverEvent(EventLineEditChanged, id, 0, q->text(), nullptr);
}

void CSoftCalendarLineEdit::Private::onChosen(const QDate& chosen) {
  edit->setText(chosen.toString(Qt::ISODate));  // reports
}

void CSoftCalendarLineEdit::Private::openCalendar() {
  if ((popup && popup->isVisible()) || !q->isEnabled()) return;
  const QDate today = QDate::currentDate();
  const QDate fallback = maximum.isValid() ? std::min(maximum, today) : today;
  const QDate typed = validDate();
  popup = new CCalendarPopup(q, typed.isValid() ? typed : fallback, maximum,
                             [this](const QDate& chosen) { onChosen(chosen); });
  popup->open();
}

/// A date that can still become one is no mistake before the user goes on to something else.
void CSoftCalendarLineEdit::Private::updateMark() {
  const QString text = edit->text();
  const auto digits = std::count_if(text.cbegin(), text.cend(), [](QChar c) { return c.isDigit(); });
  QString problem;
  if (digits != 0 && !validDate().isValid() && (digits == WHOLE_DIGITS || !edit->hasFocus()))
    problem = dateOf(text).isValid() ? QString::fromUtf8(TOO_LATE).arg(maximum.toString(Qt::ISODate))
                                     : QString::fromUtf8(NO_DATE);
  QPalette colors;
  if (!problem.isEmpty()) {
    colors.setColor(QPalette::Text, CUiResource::getColor(QStringLiteral("clr_input_wrong_text")));
    colors.setColor(QPalette::Base, CUiResource::getColor(QStringLiteral("clr_input_wrong")));
  }
  edit->setPalette(colors);
  edit->setToolTip(problem);
  edit->setAccessibleDescription(problem);
}

CSoftCalendarLineEdit::CSoftCalendarLineEdit(int id, QWidget* parent) : QWidget(parent), CEventDeliverer(this) {
  utils::assertGui();
  m_d = std::make_unique<Private>(id, this);
}

CSoftCalendarLineEdit::~CSoftCalendarLineEdit() { delete m_d->popup; }

int CSoftCalendarLineEdit::id() const { return m_d->id; }

void CSoftCalendarLineEdit::setMaximumDate(const QDate& date) {
  m_d->maximum = date;
  m_d->date = m_d->validDate();
  m_d->updateMark();
}

void CSoftCalendarLineEdit::setEditable(bool editable) { m_d->edit->setReadOnly(!editable); }

void CSoftCalendarLineEdit::setInputMask(const QString& mask) {
  const QString text = m_d->edit->text();
  m_d->isByProgram = true;
  m_d->edit->setInputMask(mask);
  m_d->setByProgram(text);
}

void CSoftCalendarLineEdit::setDate(const QDate& date) { m_d->setByProgram(date.toString(Qt::ISODate)); }

QDate CSoftCalendarLineEdit::date() const { return m_d->validDate(); }

QString CSoftCalendarLineEdit::text() const { return m_d->validDate().toString(Qt::ISODate); }

}  // namespace GW
