#pragma once

#include "gw/CBaseWidget.h"
#include "host_api.h"

#include <QWidget>

#include <memory>

namespace GW {

/// Widgets one after another in a row or column, some of fixed length, some sharing what is left. GUI thread.
class HOST_API CWidgetList : public CBaseWidget {
 public:
  CWidgetList(Qt::Orientation orientation, QWidget* parent);
  ~CWidgetList() override;

  void setMargins(int left, int top, int right, int bottom);
  void setSpacing(int pixels);
  void addFixedWidget(QWidget* widget);
  void addStretchWidget(QWidget* widget);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// A toolbar whose items take the length that they need. GUI thread.
class HOST_API CAutoExpandToolBar : public CBaseWidget {
 public:
  explicit CAutoExpandToolBar(QWidget* parent);
  ~CAutoExpandToolBar() override;

  /// Resource key of the image that is tiled behind the items.
  void setBackgroundImage(const QString& key);
  /// Takes ownership by parentage.
  void addWidget(QWidget* widget);
  void addSeparator();
  /// Measures the items again after a text or visibility changed.
  void updateItemLength();

  void onUiResourceChanged() override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
