#pragma once

#include "gw/CBaseWidget.h"
#include "host_api.h"

#include <memory>

namespace GW {

/// A line of text; with an id it is a link, which a click, Space or Return follows (EventTextClicked with the id). GUI
/// thread.
class HOST_API CSimpleTextWidget : public CBaseWidget {
  Q_OBJECT
 public:
  /// A plain label.
  CSimpleTextWidget(const QString& text, QWidget* parent);
  /// A link.
  CSimpleTextWidget(int id, const QString& text, QWidget* parent);
  ~CSimpleTextWidget() override;

  QString text() const;
  /// Resource keys; the application's font and text colour otherwise.
  void setFontKey(const QString& key);
  void setColorKey(const QString& key);
  /// Most pixels that the text takes; what does not fit ends in an ellipsis. No limit at first.
  void setWidthLimit(int pixels);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  void onUiResourceChanged() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
