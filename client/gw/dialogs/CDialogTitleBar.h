#pragma once

#include "gw/dialogs/CWindowDrag.h"

#include <QString>
#include <QWidget>

class QAbstractButton;

namespace GW {

/// The title and the close button of a dialog, whose child it is; the dialog is moved by it. GUI thread.
class CDialogTitleBar : public QWidget {
 public:
  explicit CDialogTitleBar(QWidget* dialog);
  ~CDialogTitleBar() override;

  void setTitle(const QString& title);
  QAbstractButton* closeButton() const { return m_close; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QRect titleRect() const;

  QString m_title;
  QAbstractButton* m_close;
  CWindowDrag m_drag;
};

}  // namespace GW
