#pragma once

#include "gw/view/CTableColors.h"

#include <QWidget>

class QHeaderView;

namespace GW {

class CPlainRows;

/// The statistics row of a plain table: the sums of the columns that have one. GUI thread.
class CPlainSums : public QWidget {
 public:
  /// All of them outlive the row.
  CPlainSums(const CPlainRows& rows, const QHeaderView& header, const CTableColors& colors, QWidget* parent);
  ~CPlainSums() override;

  /// Empty for a column without a sum.
  QString text(int column) const;
  bool isNeeded() const;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont columnFont(int column) const;
  /// What a cell shows; the first column without a sum shows what the row is.
  QString shownText(int column) const;

  const CPlainRows& m_rows;
  const QHeaderView& m_header;
  const CTableColors& m_colors;
};

}  // namespace GW
