#pragma once

#include "host_api.h"

#include <QString>

#include <memory>

class QWidget;

namespace GW {

class IEventReceiver;

/// Something that reports events to an owner. GUI thread.
///
/// The owner is the receiver that was set, else the nearest `IEventReceiver` (a `CBaseWidget` or `CBaseDialog`) among
/// the parents of the widget.
class HOST_API CEventDeliverer {
 public:
  /// `self` is the reporting widget; null for something that is no widget and needs `setEventReceiver`.
  explicit CEventDeliverer(QWidget* self);
  virtual ~CEventDeliverer();
  CEventDeliverer(const CEventDeliverer&) = delete;
  CEventDeliverer& operator=(const CEventDeliverer&) = delete;

  /// Hands the event to the owner's `handleEvent` and returns its answer; false without an owner.
  bool deliverEvent(int type, int p1, int p2, const QString& text, void* data);

  /// A widget; null goes back to the parents. A receiver that is destroyed is forgotten.
  void setEventReceiver(IEventReceiver* receiver);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
