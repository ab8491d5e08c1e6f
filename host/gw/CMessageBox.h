#pragma once

#include "host_api.h"

#include <QMessageBox>
#include <QString>

class QWidget;

namespace GW {

/// Modal prompts in the client's look. GUI thread; each returns the button that closed the box. When `parent` goes
/// while the box is open, the box goes too and the answer is 0.
class HOST_API CMessageBox {
 public:
  static int information(QWidget* parent, const QString& title, const QString& text,
                         QMessageBox::StandardButtons buttons = QMessageBox::Ok);
  static int warning(QWidget* parent, const QString& title, const QString& text,
                     QMessageBox::StandardButtons buttons = QMessageBox::Ok);
  static int question(QWidget* parent, const QString& title, const QString& text,
                      QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No);
};

}  // namespace GW
