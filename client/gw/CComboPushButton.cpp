#include "gw/CComboPushButton.h"

#include "gw/CUiResource.h"
#include "gw/nine_grid.h"
#include "gw/widget_events.h"

#include "utils/threads.h"

#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>

namespace GW {

namespace {

constexpr int PADDING = 10;
constexpr int ARROW_LENGTH = 20;
constexpr QSize ARROW(8, 4);
constexpr int MARGIN = 3;  ///< above and below the text

enum EState { Normal, Hover, Pressed, Disabled };

// Texts for users.
constexpr const char* HAS_LIST = "按向下键打开列表";

}  // namespace

struct CComboPushButton::Private : public QObject {
  Private(CComboPushButton* button, int theId) : q(button), id(theId), list(new QMenu(button)) {
    list->installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override;
  QRect arrowRect() const { return QRect(q->width() - ARROW_LENGTH, 0, ARROW_LENGTH, q->height()); }
  EState state() const;
  void openList();
  void choose(int index);
  void report() { q->deliverEvent(EventItemClicked, current, id, QString(), nullptr); }

  CComboPushButton* q;
  const int id;
  QMenu* list;  ///< child of the button
  QStringList items;
  int current = -1;
  QString imageKey = QStringLiteral("img_combobtn_small_normal_1");
  std::array<QString, 4> colorKeys{QStringLiteral("clr_btn_s_normal_0"), QStringLiteral("clr_btn_s_normal_1"),
                                   QStringLiteral("clr_btn_s_normal_2"), QStringLiteral("clr_btn_s_normal_3")};
};

/// A press on the arrow only closes the open list; handed on to the button it would open it again.
bool CComboPushButton::Private::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::MouseButtonPress) return false;
  const QPoint place = q->mapFromGlobal(static_cast<QMouseEvent*>(event)->globalPos());
  list->setAttribute(Qt::WA_NoMouseReplay, arrowRect().contains(place));
  return false;
}

EState CComboPushButton::Private::state() const {
  if (!q->isEnabled()) return Disabled;
  if (q->isDown()) return Pressed;
  return q->underMouse() || list->isVisible() ? Hover : Normal;
}

void CComboPushButton::Private::openList() {
  if (items.isEmpty()) return;
  list->clear();
  for (int i = 0; i < items.size(); ++i) {
    QAction* const action = list->addAction(items[i]);
    action->setCheckable(true);
    action->setChecked(i == current);
    // Told once the list has closed: whoever is told may open a dialog or destroy the button.
    connect(
        action, &QAction::triggered, q, [this, i] { choose(i); }, Qt::QueuedConnection);
  }
  list->setMinimumWidth(q->width());
  list->setActiveAction(list->actions().value(current));
  list->popup(q->mapToGlobal(QPoint(0, q->height())));
}

void CComboPushButton::Private::choose(int index) {
  q->setCurrentItem(index);
  report();
}

CComboPushButton::CComboPushButton(int id, QWidget* parent)
    : QPushButton(parent), CEventDeliverer(this), m_d(new Private(this, id)) {
  utils::assertGui();
  setAttribute(Qt::WA_Hover);
  setAccessibleDescription(QString::fromUtf8(HAS_LIST));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(this, &QPushButton::clicked, this, [this] {
    if (m_d->current >= 0) m_d->report();
  });
  connect(m_d->list, &QMenu::aboutToHide, this, [this] { update(); });
}

CComboPushButton::~CComboPushButton() = default;

int CComboPushButton::id() const { return m_d->id; }

void CComboPushButton::addItem(const QString& text) {
  utils::assertGui();
  m_d->items.append(text);
  if (m_d->current < 0) setCurrentItem(0);
  updateGeometry();
  update();
}

int CComboPushButton::count() const { return m_d->items.size(); }

int CComboPushButton::currentItem() const { return m_d->current; }

void CComboPushButton::setCurrentItem(int index) {
  utils::assertGui();
  if (index < 0 || index >= m_d->items.size()) return;
  m_d->current = index;
  setText(m_d->items[index]);
}

void CComboPushButton::setNineGridImage(const QString& key) {
  m_d->imageKey = key;
  update();
}

void CComboPushButton::setTextColors(const QString& normal, const QString& hover, const QString& pressed,
                                     const QString& disabled) {
  m_d->colorKeys = {normal, hover, pressed, disabled};
  update();
}

QSize CComboPushButton::sizeHint() const {
  int length = fontMetrics().horizontalAdvance(text());
  for (const QString& item : m_d->items) length = std::max(length, fontMetrics().horizontalAdvance(item));
  return QSize(length + 2 * PADDING + ARROW_LENGTH, fontMetrics().height() + 2 * MARGIN);
}

QSize CComboPushButton::minimumSizeHint() const { return sizeHint(); }

void CComboPushButton::paintEvent(QPaintEvent*) {
  const EState state = m_d->state();
  const QColor color = CUiResource::getColor(m_d->colorKeys[state]);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (state == Disabled) painter.setOpacity(0.6);
  drawNineGrid(painter, rect(), CUiResource::getImage(m_d->imageKey));
  painter.setOpacity(1);
  const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  if (state == Pressed) {
    painter.setBrush(CUiResource::getColor(QStringLiteral("clr_btn_pressed")));
    painter.setPen(CUiResource::getColor(QStringLiteral("clr_btn_border")));
    painter.drawRoundedRect(frame, 3, 3);
  }
  if (hasFocus() || state == Hover) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(CUiResource::getColor(QStringLiteral("clr_btn_s_normal_1")));
    painter.drawRoundedRect(frame, 3, 3);
  }
  const QRect arrow = m_d->arrowRect();
  const QRect room = rect().adjusted(PADDING, 0, -ARROW_LENGTH - PADDING / 2, 0);
  painter.setPen(color);
  painter.drawText(room, Qt::AlignCenter | Qt::TextShowMnemonic, text());
  if (m_d->items.isEmpty()) return;
  painter.fillRect(QRectF(arrow.left(), 5, 1, height() - 10), CUiResource::getColor(QStringLiteral("clr_btn_border")));
  const QPointF tip = QRectF(arrow).center() + QPointF(0, ARROW.height() / 2.0);
  QPainterPath triangle(tip);
  triangle.lineTo(tip + QPointF(-ARROW.width() / 2.0, -ARROW.height()));
  triangle.lineTo(tip + QPointF(ARROW.width() / 2.0, -ARROW.height()));
  painter.fillPath(triangle, color);
}

void CComboPushButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_d->arrowRect().contains(event->pos())) {
    m_d->openList();
    event->accept();
  } else {
    QPushButton::mousePressEvent(event);
  }
}

void CComboPushButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Down && (event->modifiers() & ~(Qt::AltModifier | Qt::KeypadModifier)) == 0)
    m_d->openList();
  else
    QPushButton::keyPressEvent(event);
}

}  // namespace GW
