#pragma once

#include "gw/CBaseDialog.h"
#include "host_api.h"

#include <memory>

namespace GW {

/// A dialog with a frame and a title bar in the client's look. The user moves it by its title bar and sizes it by its
/// frame; Escape rejects it, and so does the title bar's close button, which is there unless the window flag
/// Qt::WindowCloseButtonHint is off when the dialog is shown. GUI thread.
class HOST_API CCommonDialog : public CBaseDialog {
  Q_OBJECT

 public:
  explicit CCommonDialog(QWidget* parent);
  ~CCommonDialog() override;

  /// Pixels between the window's edge and what is inside, on each side.
  static int frameMargin();
  /// Pixels; the title bar stands inside the frame.
  static int titleHeight();

  /// Shown in the title bar and to the window system.
  void setTitle(const QString& title);
  QString title() const;

  /// Makes `widget` fill the room under the title bar. Takes ownership by parentage; an earlier one is deleted.
  void setInnerWidget(QWidget* widget);

  void onUiResourceChanged() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
