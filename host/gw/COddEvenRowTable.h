#pragma once

#include "gw/CBaseWidget.h"
#include "host_api.h"

#include <QString>

#include <memory>
#include <vector>

namespace GW {

/// A column of a plain table.
struct CPlainColumn {
  QString title;
  int width = 84;             ///< pixels at first; the user may change it
  bool isBold = false;        ///< its cells and its sum
  bool isEditable = false;    ///< by the user
  bool isFilterable = false;  ///< the user may choose among its values
  bool isSummed = false;      ///< its sum over the displayed rows stands in the statistics row
};

/// A cell of a plain table, by the numbers it was filled with: sorting and filtering change neither.
struct CPlainCell {
  int row;
  int column;
};

/// A table of few rows whose cells are set one by one, with rows in two alternating colours. The user sorts by a click
/// on a title, filters by the mark beside it (or Alt+Down), and edits by a double click, F2 or typing. An edited cell
/// reports EventDialogCellEdited; its row stays where it is until the user sorts or filters again. GUI thread.
class HOST_API COddEvenRowTable : public CBaseWidget {
  Q_OBJECT

 public:
  explicit COddEvenRowTable(QWidget* parent);
  ~COddEvenRowTable() override;

  /// Removes the rows, as `clear` does.
  void setColumns(const std::vector<CPlainColumn>& columns);
  int columnCount() const;

  /// Removes the rows, filters and sort order.
  void clear();
  /// Rows are added at the end with empty cells, or removed there. A row added under a filter is hidden, unless an
  /// empty cell passes it, until the user filters again.
  void setRowCount(int rows);
  int rowCount() const;
  /// Rows that pass the filters.
  int displayedRowCount() const;

  // Cells by their numbers as filled. A cell outside the table is ignored; reading one gives an empty text.

  void setCell(int row, int column, const QString& text);
  /// Shown without separators, on the right; sorted and summed as a number.
  void setCell(int row, int column, qint64 number);
  void setCell(int row, int column, int number) { setCell(row, column, qint64{number}); }
  QString cellText(int row, int column) const;
  /// Empty for a column without a sum; cells that are no numbers do not count.
  QString sumText(int column) const;

  /// Takes over what the user is typing into a cell, and reports it; nothing when no editor is open.
  void commitEditing();

  /// Height of a row, the header and the statistics row, pixels.
  int itemHeight() const;

  void onUiResourceChanged() override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
