#include "gw/CTextAccessible.h"

#include "gw/CSimpleTextWidget.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace GW {

namespace {

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
  auto* const widget = dynamic_cast<CSimpleTextWidget*>(object);
  return widget == nullptr ? nullptr : new CTextAccessible(widget);
}

}  // namespace

void installTextAccessibility() { QAccessible::installFactory(makeAccessible); }

CTextAccessible::CTextAccessible(QWidget* widget) : QAccessibleWidget(widget) {}

QAccessible::Role CTextAccessible::role() const { return isLink() ? QAccessible::Link : QAccessible::StaticText; }

QStringList CTextAccessible::actionNames() const {
  QStringList names = QAccessibleWidget::actionNames();
  if (isLink() && widget()->isEnabled()) names.prepend(pressAction());
  return names;
}

void CTextAccessible::doAction(const QString& name) {
  if (name != pressAction()) return QAccessibleWidget::doAction(name);
  if (!isLink() || !widget()->isEnabled()) return;
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
  QCoreApplication::sendEvent(widget(), &press);
}

}  // namespace GW
