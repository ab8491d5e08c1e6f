#include "gw/dialogs/CWindowDrag.h"

#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace GW {

void CWindowDrag::begin(QWidget* window, Qt::Edges edges, const QPoint& global) {
  m_window = nullptr;
  if (QWindow* const handle = window->windowHandle()) {
    if (edges == Qt::Edges() ? handle->startSystemMove() : handle->startSystemResize(edges)) return;
  }
  m_window = window;
  m_edges = edges;
  m_pressed = global;
  m_before = window->geometry();
}

void CWindowDrag::moveTo(const QPoint& global) const {
  if (m_window == nullptr) return;
  const QPoint by = global - m_pressed;
  QRect place = m_before;
  if (m_edges == Qt::Edges()) place.translate(by);
  const QSize least = m_window->minimumSize().expandedTo(m_window->minimumSizeHint());
  if (m_edges.testFlag(Qt::RightEdge)) place.setWidth(std::max(least.width(), place.width() + by.x()));
  if (m_edges.testFlag(Qt::BottomEdge)) place.setHeight(std::max(least.height(), place.height() + by.y()));
  if (m_edges.testFlag(Qt::LeftEdge)) place.setLeft(std::min(place.left() + by.x(), place.right() + 1 - least.width()));
  if (m_edges.testFlag(Qt::TopEdge)) place.setTop(std::min(place.top() + by.y(), place.bottom() + 1 - least.height()));
  m_window->setGeometry(place);
}

}  // namespace GW
