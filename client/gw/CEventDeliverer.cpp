#include "gw/CEventDeliverer.h"

#include "gw/CBaseWidget.h"

#include <QPointer>

namespace GW {

struct CEventDeliverer::Private {
  QPointer<QWidget> self;
  QPointer<CBaseWidget> receiver;
};

CEventDeliverer::CEventDeliverer(QWidget* self) : m_d(new Private{self, nullptr}) {}

CEventDeliverer::~CEventDeliverer() = default;

bool CEventDeliverer::deliverEvent(int type, int p1, int p2, const QString& text, void* data) {
  if (m_d->receiver) return m_d->receiver->handleEvent(type, p1, p2, text, data);
  // Something that is no widget reports through the widget it was given, and so to that widget's receiver.
  auto* const deliverer = dynamic_cast<CEventDeliverer*>(m_d->self.data());
  if (deliverer != nullptr && deliverer != this) return deliverer->deliverEvent(type, p1, p2, text, data);
  for (QWidget* widget = m_d->self ? m_d->self->parentWidget() : nullptr; widget != nullptr;
       widget = widget->parentWidget()) {
    if (auto* const owner = dynamic_cast<CBaseWidget*>(widget)) return owner->handleEvent(type, p1, p2, text, data);
  }
  return false;
}

void CEventDeliverer::setEventReceiver(CBaseWidget* receiver) { m_d->receiver = receiver; }

}  // namespace GW
