#pragma once

#include "gw/CEventDeliverer.h"
#include "gw/CUiResource.h"
#include "host_api.h"

#include <QWidget>

namespace GW {

/// Base of every panel and compound widget: receives the events of the controls inside it. GUI thread.
class HOST_API CBaseWidget : public QWidget, public CEventDeliverer, public CUiResourceChangeHandler {
 public:
  explicit CBaseWidget(QWidget* parent);
  ~CBaseWidget() override;

  /// An event (`EWidgetEvent`) of a control inside this widget. Returns whether it was handled. The base hands it on to
  /// this widget's own owner.
  virtual bool handleEvent(int type, int p1, int p2, QString text, void* data);

 protected:
  void resizeEvent(QResizeEvent* event) override;
};

}  // namespace GW
