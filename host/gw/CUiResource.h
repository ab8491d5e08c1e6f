#pragma once

#include "host_api.h"

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QString>

namespace GW {

/// Told when colours, fonts or images have changed (another theme).
class HOST_API CUiResourceChangeHandler {
 public:
  CUiResourceChangeHandler();
  virtual ~CUiResourceChangeHandler();
  CUiResourceChangeHandler(const CUiResourceChangeHandler&) = delete;
  CUiResourceChangeHandler& operator=(const CUiResourceChangeHandler&) = delete;

  /// Default: nothing.
  virtual void onUiResourceChanged();
};

/// The client's look, by resource key. GUI thread. Unknown keys give the application's default.
class HOST_API CUiResource {
 public:
  static QColor getColor(const QString& key);
  static QFont getFont(const QString& key);
  /// Pixels; 0 for an unknown key.
  static int getSize(const QString& key);
  static QPixmap getImage(const QString& key);
};

}  // namespace GW
