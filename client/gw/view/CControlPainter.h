#pragma once

#include "gw/view/CTextPainter.h"

#include "gw/CUiResource.h"
#include "gw/delegates/CDelegateControl.h"

#include <QColor>
#include <QPixmap>
#include <QRect>

class QPainter;
class QPalette;

namespace GW {

/// Paints check boxes, radio buttons and the cells that one can type into, in the colours of the present theme. The
/// boxes are drawn once for each size and state. GUI thread.
class CControlPainter : public CUiResourceChangeHandler {
 public:
  CControlPainter();
  ~CControlPainter() override;

  /// Where a cell's check box or radio button stands: centred, an even number of pixels smaller than the cell.
  static QRect boxRect(const QRect& cell, const QFontMetrics& metrics);
  /// Where the frame of a cell stands that one can type into.
  static QRect frameRect(const QRect& cell);

  void paintBox(QPainter& painter, const QRect& cell, ECellControl kind, bool checked, bool enabled);
  /// `box` is a square.
  void paintBoxAt(QPainter& painter, const QRect& box, ECellControl kind, bool checked, bool enabled);
  void paintField(QPainter& painter, const QRect& cell, const QString& text, Qt::Alignment alignment, bool enabled,
                  const QPalette& colors);

  void onUiResourceChanged() override;

 private:
  struct CColors {
    QColor border, fieldBorder, background, accent, mark;
    QColor disabledBorder, disabledBackground, disabledText;
  };
  static CColors themeColors();
  QPixmap makeBox(int side, qreal ratio, ECellControl kind, bool checked, bool enabled) const;

  CTextPainter m_text;
  CColors m_colors;
  QPixmap m_boxes[2][2][2];  ///< kind (check box, radio button), checked, enabled; null until it is needed
  int m_side = 0;            ///< of the boxes, logical pixels
  qreal m_ratio = 0;
};

}  // namespace GW
