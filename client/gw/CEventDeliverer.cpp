#include "gw/CEventDeliverer.h"

#include "gw/IEventReceiver.h"

#include <QPointer>
#include <QWidget>

#include <cassert>

namespace GW {

struct CEventDeliverer::Private {
  QPointer<QWidget> self;
  QPointer<QWidget> receiver;
};

IEventReceiver::IEventReceiver() = default;
IEventReceiver::~IEventReceiver() = default;

CEventDeliverer::CEventDeliverer(QWidget* self) : m_d(new Private{self, nullptr}) {}

CEventDeliverer::~CEventDeliverer() = default;

bool CEventDeliverer::deliverEvent(int type, int p1, int p2, const QString& text, void* data) {
  // The cast finds nothing in a receiver that is half destroyed.
  if (auto* const receiver = dynamic_cast<IEventReceiver*>(m_d->receiver.data()))
    return receiver->handleEvent(type, p1, p2, text, data);
  // Something that is no widget reports through the widget it was given, and so to that widget's receiver.
  auto* const deliverer = dynamic_cast<CEventDeliverer*>(m_d->self.data());
  if (deliverer != nullptr && deliverer != this) return deliverer->deliverEvent(type, p1, p2, text, data);
  for (QWidget* widget = m_d->self ? m_d->self->parentWidget() : nullptr; widget != nullptr;
       widget = widget->parentWidget()) {
    if (auto* const owner = dynamic_cast<IEventReceiver*>(widget)) return owner->handleEvent(type, p1, p2, text, data);
  }
  return false;
}

void CEventDeliverer::setEventReceiver(IEventReceiver* receiver) {
  m_d->receiver = dynamic_cast<QWidget*>(receiver);
  assert((receiver == nullptr || m_d->receiver) && "a receiver of events is a widget");
}

}  // namespace GW
