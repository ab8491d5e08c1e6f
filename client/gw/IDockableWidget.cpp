#include "gw/IDockableWidget.h"

#include <QPointer>
#include <QVBoxLayout>

namespace GW {

struct IDockableWidget::Private {
  QVBoxLayout* layout;
  QPointer<QWidget> inner;
};

IDockableWidget::IDockableWidget(QWidget* parent)
    : CBaseWidget(parent), m_d(new Private{new QVBoxLayout(this), nullptr}) {
  m_d->layout->setContentsMargins(0, 0, 0, 0);
}

IDockableWidget::~IDockableWidget() = default;

void IDockableWidget::setParam(const QString&) {}

QString IDockableWidget::param() const { return QString(); }

void IDockableWidget::setInnerWidget(QWidget* widget) {
  if (m_d->inner && m_d->inner != widget) {
    m_d->layout->removeWidget(m_d->inner);
    m_d->inner->hide();
  }
  m_d->inner = widget;
  if (widget != nullptr) m_d->layout->addWidget(widget);
}

}  // namespace GW
