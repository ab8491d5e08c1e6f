#include "vn/CCountDownButton.h"

#include "utils/threads.h"

#include <QStyle>
#include <QTimer>

namespace VN {

namespace {

constexpr int TICK_MS = 1000;
constexpr char LOCKED_PROPERTY[] = "locked";  ///< the style sheet of the buttons draws it like a disabled one

}  // namespace

struct CCountDownButton::Private {
  explicit Private(CCountDownButton* button) : q(button), timer(new QTimer(button)) {}

  void lock();
  void tick();
  void unlock();
  void showSeconds() { q->setText(QStringLiteral("%1(%2)").arg(baseText).arg(secondsLeft)); }
  void setLook(bool locked);

  CCountDownButton* q;
  QTimer* timer;  ///< child of the button; runs while it is locked
  int interval = 0;
  int secondsLeft = 0;
  QString baseText;  ///< while locked: the text without the seconds
};

void CCountDownButton::Private::lock() {
  if (secondsLeft > 0 || interval <= 0) return;
  secondsLeft = interval;
  baseText = q->text();
  showSeconds();
  setLook(true);
  timer->start();
}

void CCountDownButton::Private::tick() {
  if (secondsLeft > 1) {
    --secondsLeft;
    showSeconds();
  } else {
    unlock();
  }
}

void CCountDownButton::Private::unlock() {
  timer->stop();
  if (secondsLeft == 0) return;
  secondsLeft = 0;
  q->setText(baseText);
  setLook(false);
}

void CCountDownButton::Private::setLook(bool locked) {
  q->setProperty(LOCKED_PROPERTY, locked);
  q->style()->unpolish(q);
  q->style()->polish(q);
}

CCountDownButton::CCountDownButton(int id, const QString& text, QWidget* parent)
    : CSmallNoNormalButton(id, text, parent), m_d(new Private(this)) {
  m_d->timer->setInterval(TICK_MS);
  m_d->timer->setTimerType(Qt::PreciseTimer);
  connect(m_d->timer, &QTimer::timeout, this, [this] { m_d->tick(); });
  // Connected after the base's connection, so that the owner has seen the click before the button locks.
  connect(this, &QPushButton::clicked, this, [this] { m_d->lock(); });
}

CCountDownButton::~CCountDownButton() = default;

void CCountDownButton::setTimeInterval(int seconds) {
  utils::assertGui();
  m_d->interval = seconds;
}

bool CCountDownButton::isLocked() const {
  utils::assertGui();
  return m_d->secondsLeft > 0;
}

void CCountDownButton::unlock() {
  utils::assertGui();
  m_d->unlock();
}

}  // namespace VN
