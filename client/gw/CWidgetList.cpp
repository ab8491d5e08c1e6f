#include "gw/containers.h"

#include <QBoxLayout>

namespace GW {

struct CWidgetList::Private {
  QBoxLayout* layout;
};

CWidgetList::CWidgetList(Qt::Orientation orientation, QWidget* parent)
    : CBaseWidget(parent),
      m_d(new Private{
          new QBoxLayout(orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this)}) {
  m_d->layout->setContentsMargins(0, 0, 0, 0);
  m_d->layout->setSpacing(0);
}

CWidgetList::~CWidgetList() = default;

void CWidgetList::setMargins(int left, int top, int right, int bottom) {
  m_d->layout->setContentsMargins(left, top, right, bottom);
}

void CWidgetList::setSpacing(int pixels) { m_d->layout->setSpacing(pixels); }

void CWidgetList::addFixedWidget(QWidget* widget) { m_d->layout->addWidget(widget, 0); }

void CWidgetList::addStretchWidget(QWidget* widget) { m_d->layout->addWidget(widget, 1); }

}  // namespace GW
