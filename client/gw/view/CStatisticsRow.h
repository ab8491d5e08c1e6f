#pragma once

#include "gw/view/CSlicedTask.h"
#include "gw/view/CTableColors.h"

#include "gw/table/CShownRows.h"

#include <QStringList>
#include <QWidget>

class QHeaderView;

namespace GW {

class CTextPainter;

/// The strip below the rows with the sums of the columns that have one. GUI thread.
class CStatisticsRow : public QWidget {
 public:
  CStatisticsRow(CShownRows& rows, const QHeaderView& header, const CTableColors& colors, CTextPainter& texts,
                 QWidget* parent);
  ~CStatisticsRow() override;

  /// Paints again what has another text; soon, when the sums have to be made first.
  void refresh();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void showTexts();
  QRect cellRect(int columnId) const;
  /// The column that shows the title: the first one on the left without a sum; -1 when there is none.
  int titleColumn() const;

  CShownRows& m_rows;
  const QHeaderView& m_header;
  const CTableColors& m_colors;
  CTextPainter& m_texts;
  QStringList m_shown;          ///< by column id
  CSlicedTask m_task{nullptr};  ///< makes the sums ready
};

}  // namespace GW
