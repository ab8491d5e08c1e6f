#pragma once

#include "gw/CBaseWidget.h"
#include "host_api.h"

#include <memory>

namespace GW {

/// A panel that a host docks. GUI thread.
class HOST_API IDockableWidget : public CBaseWidget {
 public:
  explicit IDockableWidget(QWidget* parent);
  ~IDockableWidget() override;

  /// Restores what `param` returned. Default: nothing.
  virtual void setParam(const QString& param);
  /// The panel's state for the host's layout file. Default: empty.
  virtual QString param() const;

 protected:
  /// Makes `widget` fill the panel.
  void setInnerWidget(QWidget* widget);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
