#pragma once

#include "gw/view/CTableColors.h"

#include <QHeaderView>

namespace GW {

class CPlainRows;

/// The header of a plain table: titles, sort and filter marks. GUI thread.
class CPlainHeader : public QHeaderView {
  Q_OBJECT

 public:
  CPlainHeader(const CPlainRows& rows, const CTableColors& colors, QWidget* parent);
  ~CPlainHeader() override;

  /// In global coordinates.
  QRect sectionPlace(int column) const;

  QSize sizeHint() const override;

 Q_SIGNALS:
  void sigFilterClicked(int column);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& section, int column) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  /// Where the parts of a section stand; null for those that it does not show.
  struct CParts {
    QRect title;
    QRect sort;
    QRect filter;
  };
  QString title(int column) const;
  QRect sectionRect(int column) const;
  CParts parts(const QRect& section, int column) const;
  /// The column whose filter mark is there; -1: none.
  int filterAt(const QPoint& place) const;
  void setHovered(int column);

  const CPlainRows& m_rows;
  const CTableColors& m_colors;
  int m_hovered = -1;
  int m_pressedFilter = -1;
  bool m_isBorderClick = false;  ///< a double click was one on a border
};

}  // namespace GW
