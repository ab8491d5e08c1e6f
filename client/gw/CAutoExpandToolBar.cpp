#include "gw/containers.h"

#include "gw/CBarPopup.h"
#include "gw/CUiResource.h"
#include "gw/widget_events.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QMargins>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QToolButton>
#include <QWidgetItem>

#include <algorithm>
#include <utility>
#include <vector>

namespace GW {

namespace {

constexpr int SPACING = 8;

// Texts for users.
constexpr const char* MORE_MARK = "»";
constexpr const char* MORE_NAME = "更多";

struct CBarItem {
  QPointer<QWidget> widget;
  bool isSeparator;
};

QSize sizeOf(QWidget* widget) { return QWidgetItem(widget).sizeHint(); }

/// Moves a widget without a change to whether it is hidden.
void moveTo(QWidget* parent, QWidget* widget) {
  const bool isHidden = widget->isHidden();
  widget->setParent(parent);
  if (!isHidden) widget->show();
}

}  // namespace

/// Sees the events of the bar, its items and its popup, and places the items.
struct CAutoExpandToolBar::Private : public QObject {
  /// Something that takes a place in the bar, a separator or an item.
  struct CPlace {
    QWidget* widget;
    int length;
  };

  explicit Private(CAutoExpandToolBar* bar);

  bool eventFilter(QObject* watched, QEvent* event) override;
  void add(QWidget* widget, bool isSeparator);
  bool isItem(const QObject* object) const;
  /// Those that are shown or would be if there were room, with the separators between them.
  std::vector<CPlace> places() const;
  static int lengthOf(const std::vector<CPlace>& places, std::size_t count);
  int height() const;
  void change();
  void arrange();
  void place(const std::vector<CPlace>& places, std::size_t count);
  void moveBehind(const std::vector<QWidget*>& items);
  void restoreTabOrder();
  void open();
  bool isOpen() const { return popup != nullptr && popup->isVisible(); }

  CAutoExpandToolBar* q;
  QToolButton* more;           ///< child of the bar; shown when the popup holds something
  CBarPopup* popup = nullptr;  ///< child of the bar; made when first needed
  std::vector<CBarItem> items;
  QMargins margins{8, 4, 8, 5};
  QString backgroundKey;
  bool hasBorder = true;
  bool isArranging = false;
};

CAutoExpandToolBar::Private::Private(CAutoExpandToolBar* bar) : q(bar), more(new QToolButton(bar)) {
  more->setText(QString::fromUtf8(MORE_MARK));
  more->setAccessibleName(QString::fromUtf8(MORE_NAME));
  more->setToolTip(QString::fromUtf8(MORE_NAME));
  more->setAutoRaise(true);
  more->hide();
  connect(more, &QToolButton::clicked, this, [this] { open(); });
  more->installEventFilter(this);
  bar->installEventFilter(this);
}

bool CAutoExpandToolBar::Private::eventFilter(QObject* watched, QEvent* event) {
  if (isArranging) return false;
  switch (event->type()) {
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
    case QEvent::ParentChange:
      if (isItem(watched)) change();
      break;
    case QEvent::LayoutRequest:
    case QEvent::Show:
    case QEvent::LayoutDirectionChange:
      if (watched == q) arrange();
      if (watched == popup) change();
      break;
    case QEvent::Hide:
      if (watched == popup) change();
      if (watched == q && isOpen()) popup->close();
      break;
    case QEvent::KeyPress:
      if (watched == more && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Down) {
        open();
        return true;
      }
      break;
    default: break;
  }
  return false;
}

void CAutoExpandToolBar::Private::add(QWidget* widget, bool isSeparator) {
  const bool isHiddenByOwner = widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
  if (widget->parentWidget() != q) widget->setParent(q);
  items.push_back({widget, isSeparator});
  if (isSeparator) {
    widget->hide();
  } else {
    if (!isHiddenByOwner) widget->show();
    widget->installEventFilter(this);
  }
  change();
}

bool CAutoExpandToolBar::Private::isItem(const QObject* object) const {
  return std::any_of(items.begin(), items.end(), [object](const CBarItem& item) { return item.widget == object; });
}

std::vector<CAutoExpandToolBar::Private::CPlace> CAutoExpandToolBar::Private::places() const {
  std::vector<CPlace> places;
  QWidget* separator = nullptr;
  for (const CBarItem& item : items) {
    QWidget* const widget = item.widget;
    if (widget == nullptr || (!item.isSeparator && widget->isHidden())) continue;
    if (item.isSeparator) {
      if (!places.empty()) separator = widget;
      continue;
    }
    if (separator != nullptr) places.push_back({std::exchange(separator, nullptr), 1});
    places.push_back({widget, sizeOf(widget).width()});
  }
  return places;
}

int CAutoExpandToolBar::Private::lengthOf(const std::vector<CPlace>& places, std::size_t count) {
  int length = 0;
  for (std::size_t i = 0; i < count; ++i) length += places[i].length + (i == 0 ? 0 : SPACING);
  return length;
}

int CAutoExpandToolBar::Private::height() const {
  int height = more->sizeHint().height();
  for (const CBarItem& item : items)
    if (item.widget && !item.isSeparator) height = std::max(height, sizeOf(item.widget).height());
  return height;
}

void CAutoExpandToolBar::Private::change() {
  q->updateGeometry();
  const auto isInPopup = [this](const CBarItem& item) {
    return item.widget && item.widget->parentWidget() == popup && !item.widget->isHidden();
  };
  if (isOpen() && std::none_of(items.begin(), items.end(), isInPopup)) popup->close();
  if (q->isVisible()) QCoreApplication::postEvent(q, new QEvent(QEvent::LayoutRequest));
}

void CAutoExpandToolBar::Private::arrange() {
  // What the user is working with in the popup stays there until it closes.
  if (isArranging || isOpen()) return;
  isArranging = true;
  const auto hasLeft = [this](const CBarItem& item) {
    return !item.widget ||
           (item.widget->parentWidget() != q && (popup == nullptr || item.widget->parentWidget() != popup));
  };
  items.erase(std::remove_if(items.begin(), items.end(), hasLeft), items.end());

  const std::vector<CPlace> all = places();
  const int room = q->width() - margins.left() - margins.right();
  std::size_t count = all.size();
  if (lengthOf(all, count) > room) {
    while (count > 0 && lengthOf(all, count) + SPACING + more->sizeHint().width() > room) --count;
  }
  const auto isSeparator = [this](const QWidget* widget) {
    return std::any_of(items.begin(), items.end(),
                       [widget](const CBarItem& item) { return item.isSeparator && item.widget == widget; });
  };
  std::vector<QWidget*> behind;
  for (std::size_t i = count; i < all.size(); ++i)
    if (!isSeparator(all[i].widget)) behind.push_back(all[i].widget);
  if (count > 0 && isSeparator(all[count - 1].widget)) --count;
  moveBehind(behind);
  place(all, count);
  isArranging = false;
}

void CAutoExpandToolBar::Private::moveBehind(const std::vector<QWidget*>& behind) {
  if (!behind.empty() && popup == nullptr) {
    popup = new CBarPopup(more, q);
    popup->installEventFilter(this);
  }
  bool isMoved = false;
  for (const CBarItem& item : items) {
    const bool isBehind = std::find(behind.begin(), behind.end(), item.widget) != behind.end();
    // One that is hidden now stays where it is.
    if (item.isSeparator || item.widget->isHidden() || isBehind == (item.widget->parentWidget() == popup)) continue;
    isMoved = true;
    moveTo(isBehind ? static_cast<QWidget*>(popup) : q, item.widget);
  }
  if (!isMoved) return;
  for (QWidget* widget : behind) {
    popup->layout()->removeWidget(widget);
    popup->layout()->addWidget(widget);
    popup->layout()->setAlignment(widget, Qt::AlignLeft);
  }
  restoreTabOrder();
}

/// A widget that has come into a window stands last in its order.
void CAutoExpandToolBar::Private::restoreTabOrder() {
  for (QWidget* window : {static_cast<QWidget*>(more), static_cast<QWidget*>(popup)}) {
    if (window == nullptr) continue;
    QWidget* last = window;
    for (const CBarItem& item : items) {
      if (item.isSeparator || (item.widget->parentWidget() == popup) != (window == popup)) continue;
      QWidgetList widgets = item.widget->findChildren<QWidget*>();
      widgets.prepend(item.widget);
      for (QWidget* widget : widgets) {
        const bool isInside = widget->window() == last->window();  // not in the list of a combo box
        if (!isInside || (widget->focusPolicy() & Qt::TabFocus) == 0 || widget->focusProxy() != nullptr) continue;
        QWidget::setTabOrder(last, widget);
        last = widget;
      }
    }
    if (window == more) QWidget::setTabOrder(last, more);
  }
}

void CAutoExpandToolBar::Private::place(const std::vector<CPlace>& places, std::size_t count) {
  const QRect inside = q->rect().marginsRemoved(margins);
  const auto put = [&](QWidget* widget, int x, int length) {
    QWidgetItem item(widget);
    item.setAlignment(Qt::AlignVCenter);
    const QRect room(x, inside.top(), length, inside.height());
    item.setGeometry(QStyle::visualRect(q->layoutDirection(), q->rect(), room));
  };
  for (const CBarItem& item : items) {
    const auto end = places.begin() + static_cast<std::ptrdiff_t>(count);
    if (item.isSeparator)
      item.widget->setVisible(
          std::any_of(places.begin(), end, [&item](const CPlace& p) { return p.widget == item.widget; }));
  }
  int x = inside.left();
  for (std::size_t i = 0; i < count; ++i) {
    put(places[i].widget, x, places[i].length);
    x += places[i].length + SPACING;
  }
  more->setVisible(count < places.size());
  if (count < places.size()) {
    const int length = more->sizeHint().width();
    put(more, std::max(inside.left(), inside.right() + 1 - length), length);
  }
}

void CAutoExpandToolBar::Private::open() {
  if (popup != nullptr && !more->isHidden()) popup->open();
}

CAutoExpandToolBar::CAutoExpandToolBar(QWidget* parent) : CBaseWidget(parent), m_d(new Private(this)) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

CAutoExpandToolBar::~CAutoExpandToolBar() = default;

void CAutoExpandToolBar::setBackgroundImage(const QString& key) {
  m_d->backgroundKey = key;
  update();
}

void CAutoExpandToolBar::setShowBorder(bool show) {
  m_d->hasBorder = show;
  update();
}

void CAutoExpandToolBar::setMargins(int left, int top, int right, int bottom) {
  m_d->margins = QMargins(left, top, right, bottom);
  updateItemLength();
}

void CAutoExpandToolBar::addWidget(QWidget* widget) { m_d->add(widget, false); }

void CAutoExpandToolBar::addSeparator() {
  auto* const line = new QFrame(this);
  line->setFixedSize(1, fontMetrics().height());
  line->setAutoFillBackground(true);
  m_d->add(line, true);
  onUiResourceChanged();
}

void CAutoExpandToolBar::setItemVisible(QWidget* widget, bool visible) {
  widget->setVisible(visible);
  updateItemLength();
}

void CAutoExpandToolBar::updateItemLength() {
  updateGeometry();
  if (isVisible()) m_d->arrange();
}

bool CAutoExpandToolBar::handleEvent(int type, int p1, int p2, QString text, void* data) {
  // The owner may open a dialog, over which the popup would stay.
  const bool isClick = type == EventButtonClicked || type == EventTextClicked || type == EventItemClicked;
  if (isClick && m_d->isOpen()) m_d->popup->close();
  return CBaseWidget::handleEvent(type, p1, p2, std::move(text), data);
}

QSize CAutoExpandToolBar::sizeHint() const {
  const auto places = m_d->places();
  const QMargins& margins = m_d->margins;
  return QSize(Private::lengthOf(places, places.size()), m_d->height()).grownBy(margins);
}

QSize CAutoExpandToolBar::minimumSizeHint() const {
  return QSize(std::min(m_d->more->sizeHint().width() + m_d->margins.left() + m_d->margins.right(), sizeHint().width()),
               sizeHint().height());
}

void CAutoExpandToolBar::onUiResourceChanged() {
  for (const CBarItem& item : m_d->items) {
    if (!item.isSeparator || !item.widget) continue;
    QPalette colors = item.widget->palette();
    colors.setColor(QPalette::Window, CUiResource::getColor(QStringLiteral("clr_bar_line")));
    item.widget->setPalette(colors);
  }
  update();
}

void CAutoExpandToolBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QPixmap image = CUiResource::getImage(m_d->backgroundKey);
  // An image as high as the bar: tiles below one another would show a seam.
  if (!image.isNull())
    painter.drawTiledPixmap(rect(), image.scaled(image.width(), height()));
  else
    painter.fillRect(rect(), CUiResource::getColor(QStringLiteral("clr_bar_top")));
  if (m_d->hasBorder)
    painter.fillRect(0, height() - 1, width(), 1, CUiResource::getColor(QStringLiteral("clr_bar_line")));
}

void CAutoExpandToolBar::resizeEvent(QResizeEvent* event) {
  CBaseWidget::resizeEvent(event);
  m_d->arrange();
}

}  // namespace GW
