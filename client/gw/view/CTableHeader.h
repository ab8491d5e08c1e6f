#pragma once

#include "gw/view/CTableColors.h"

#include "gw/table/CShownRows.h"

#include <QHeaderView>

#include <memory>
#include <vector>

namespace GW {

class CControlPainter;

/// The header of a table: titles, sort and filter marks, check boxes. Sections are column ids. It changes nothing of
/// the rows; the marks show their sort order and filters. GUI thread.
class CTableHeader : public QHeaderView {
  Q_OBJECT

 public:
  CTableHeader(const CShownRows& rows, const CTableColors& colors, QWidget* parent);
  ~CTableHeader() override;

  /// The rows have columns more than the header.
  void addColumns();
  void titleChanged(int columnId);
  void updateMarks();

  void setColumnMovable(int columnId, bool movable);
  void setCheckBoxVisible(int columnId, bool visible);
  void setChecked(int columnId, bool checked);
  bool isChecked(int columnId) const;

  /// The width for the whole title beside its marks; also for a hidden column, for which a size hint is 0.
  int titleWidth(int columnId) const;

  QSize sizeHint() const override;

 Q_SIGNALS:
  void sigTitleClicked(int columnId, bool extend);
  /// The section's place is in global coordinates.
  void sigFilterClicked(int columnId, const QRect& section);
  /// The box shows the new state.
  void sigCheckBoxClicked(int columnId, bool checked);
  void sigMenuRequested(const QPoint& global);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& section, int columnId) const override;
  QSize sectionSizeFromContents(int columnId) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  struct CMarks {
    bool isMovable = true;
    bool hasCheckBox = false;
    bool isChecked = false;
    bool isFiltered = false;
    int sortRank = 0;  ///< from 1; 0: not sorted by
    Qt::SortOrder order = Qt::AscendingOrder;
  };
  /// Where the parts of a section stand; null for those that it does not show.
  struct CParts {
    QRect checkBox;
    QRect title;
    QRect sort;
    QRect rank;
    QRect filter;
  };
  enum class EPart : unsigned char { None, Title, CheckBox, Filter };
  class CColumns;

  CMarks& marks(int columnId);
  const CMarks& marks(int columnId) const;
  const QString& title(int columnId) const;
  QRect sectionRect(int columnId) const;
  CParts parts(const QRect& section, int columnId) const;
  EPart partAt(const QPoint& position, int* columnId) const;
  void setHovered(int columnId);
  QFont rankFont() const;
  int markSize() const;

  const CShownRows& m_rows;
  const CTableColors& m_colors;
  std::unique_ptr<CControlPainter> m_boxes;
  CColumns* m_columns;
  std::vector<CMarks> m_marks;  ///< by column id
  int m_hovered = -1;
  int m_pressed = -1;  ///< the section of the part that was pressed
  EPart m_pressedPart = EPart::None;
  bool m_isExtending = false;    ///< Shift was held at the last release
  bool m_isBorderClick = false;  ///< a double click was one on a border
};

}  // namespace GW
