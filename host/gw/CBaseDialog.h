#pragma once

#include "gw/CUiResource.h"
#include "gw/IEventReceiver.h"
#include "host_api.h"

#include <QDialog>

namespace GW {

/// Base of the client's dialogs: receives the events of the controls inside it. Nothing of them gets to the widget that
/// the dialog belongs to. GUI thread.
class HOST_API CBaseDialog : public QDialog, public IEventReceiver, public CUiResourceChangeHandler {
  Q_OBJECT

 public:
  explicit CBaseDialog(QWidget* parent, Qt::WindowFlags flags = {});
  ~CBaseDialog() override;

  /// The base handles nothing.
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;
};

}  // namespace GW
