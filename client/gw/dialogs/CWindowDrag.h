#pragma once

#include <QPoint>
#include <QRect>

class QWidget;

namespace GW {

/// Moves or sizes a window with the mouse: by the window system where it can, otherwise step by step. GUI thread.
class CWindowDrag {
 public:
  /// `edges` follow the mouse; none: the whole window does. The window outlives the drag.
  void begin(QWidget* window, Qt::Edges edges, const QPoint& global);
  void moveTo(const QPoint& global) const;
  void end() { m_window = nullptr; }

 private:
  QWidget* m_window = nullptr;  ///< null unless it is moved step by step
  Qt::Edges m_edges;
  QPoint m_pressed;  ///< global
  QRect m_before;
};

}  // namespace GW
