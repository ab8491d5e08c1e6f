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

/// A toolbar whose items take the length that they need. Those that find no room go into a list behind its last place,
/// from which they can be used too. GUI thread.
class HOST_API CAutoExpandToolBar : public CBaseWidget {
 public:
  explicit CAutoExpandToolBar(QWidget* parent);
  ~CAutoExpandToolBar() override;

  /// Resource key of the image that is tiled behind the items.
  void setBackgroundImage(const QString& key);
  /// Whether a line ends the bar below; it does at first.
  void setShowBorder(bool show);
  /// Room between the bar's edges and its items, pixels.
  void setMargins(int left, int top, int right, int bottom);
  /// Takes ownership by parentage.
  void addWidget(QWidget* widget);
  void addSeparator();
  /// Shows or hides an item and the place that it takes.
  void setItemVisible(QWidget* widget, bool visible);
  /// Measures the items again after a text or visibility changed.
  void updateItemLength();

  /// Closes the list after a click in it and hands the event on.
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  void onUiResourceChanged() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
