#pragma once

#include "host_api.h"

#include <QString>

namespace GW {

/// A widget that the controls inside it report their events to. GUI thread.
class HOST_API IEventReceiver {
 public:
  IEventReceiver();
  virtual ~IEventReceiver();
  IEventReceiver(const IEventReceiver&) = delete;
  IEventReceiver& operator=(const IEventReceiver&) = delete;

  /// An event (`EWidgetEvent`) of a control inside. Returns whether it was handled.
  virtual bool handleEvent(int type, int p1, int p2, QString text, void* data) = 0;
};

}  // namespace GW
