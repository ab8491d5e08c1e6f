#pragma once

#include "gw/CEventDeliverer.h"
#include "gw/CUiResource.h"
#include "gw/IEventReceiver.h"
#include "host_api.h"

#include <QWidget>

namespace GW {

/// Base of every panel and compound widget: receives the events of the controls inside it. GUI thread.
class HOST_API CBaseWidget : public QWidget,
                             public IEventReceiver,
                             public CEventDeliverer,
                             public CUiResourceChangeHandler {
 public:
  explicit CBaseWidget(QWidget* parent);
  ~CBaseWidget() override;

  /// The base hands the event on to this widget's own owner.
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
};

}  // namespace GW
