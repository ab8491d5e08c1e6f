#pragma once

#include "gw/CTableColumn.h"
#include "gw/table/CItemColumn.h"
#include "gw/table/CRowsDrain.h"
#include "rdservice/IData.h"

#include <QStringList>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace GW {

/// One column of a sort order, the most significant first.
struct CSortColumn {
  int column;
  Qt::SortOrder order;

  friend bool operator==(const CSortColumn& a, const CSortColumn& b) {
    return a.column == b.column && a.order == b.order;
  }
};

/// What happens to the displayed rows in one step.
struct CRowsChange {
  enum EKind : unsigned char {
    Content,  ///< the same rows in the same order
    Append,   ///< the rows from `firstAdded` on are added below the others, which stay
    Order,    ///< the same rows in another order
    Reset,    ///< anything: rows come, go and move; with `newSlots`, slots change
  };

  EKind kind = Content;
  int firstAdded = 0;
  int added = 0;
  std::vector<int> changedSlots;               ///< displayed before and after, with another record or other cells
  const std::vector<int>* newSlots = nullptr;  ///< by old slot: the new one, -1 for rows that are gone; lives as long
                                               ///< as the notification
};

/// Told before and after every change of the displayed rows. Between the two nobody reads them.
class IRowsObserver {
 public:
  virtual ~IRowsObserver() = default;
  virtual void rowsAboutToChange(const CRowsChange& change) = 0;
  virtual void rowsChanged(const CRowsChange& change) = 0;
};

/// The GUI thread's side of a table: rows taken from the shared side, sorted and filtered. A slot is the number of a
/// row's arrival and stays with its record until rows are dropped; a row is a displayed position. Column ids are the
/// order of creation. GUI thread; takes no lock.
class CShownRows {
 public:
  CShownRows();
  ~CShownRows();
  CShownRows(const CShownRows&) = delete;
  CShownRows& operator=(const CShownRows&) = delete;

  /// Null for none. Not owned.
  void setObserver(IRowsObserver* observer);

  // --- columns ---

  /// Returns its id.
  int addColumn(CTableColumn column);
  int columnCount() const;
  /// Null for an unknown id. Pointers stay good when columns are added.
  CTableColumn* column(int columnId);
  const CTableColumn* column(int columnId) const;
  /// Null for none. The column's keys and values are made anew; its filter keeps its texts.
  void setDelegate(int columnId, std::unique_ptr<CBaseTableColumnWidgetDelegate> delegate);

  // --- rows ---

  int rowCount() const;
  int slotCount() const;
  /// -1 for a row that does not exist.
  int slotAt(int row) const;
  /// -1 for a slot that is not displayed.
  int rowOf(int slot) const;
  const rdservice::IDataPtr& record(int slot) const;
  std::string key(int slot) const;
  CItemState item(int columnId, int slot) const;
  /// Null when the column has no cells that anybody set.
  const CItemColumn* items(int columnId) const;
  /// The text shown; empty for an unknown column.
  QString text(int slot, int columnId) const;

  // --- changes ---

  /// New rows of a drain that more rows follow at once may wait, and be displayed together with those.
  void apply(CRowsDrain&& drain);
  /// Displays what waits.
  void finishApplying();
  /// Whether rows wait for their place in the order.
  bool hasWaiting() const;
  void clear();

  // --- order ---

  /// Empty: order of arrival. Equal rows are in order of arrival, whatever the direction.
  void setSort(std::vector<CSortColumn> columns);
  const std::vector<CSortColumn>& sort() const;

  // --- filter ---

  /// Only rows whose text in the column is one of these are displayed; none: every row.
  void setFilter(int columnId, std::optional<QStringList> texts);
  bool isFiltered(int columnId) const;
  bool isFiltered() const;
  std::optional<QStringList> filter(int columnId) const;

  /// A distinct value of a column, for a list to choose from.
  struct CValue {
    std::uint32_t code;  ///< of the value in this column
    int rows;            ///< how many rows that pass the filters of the other columns have it
    bool isAccepted;     ///< by the column's own filter
  };
  /// The values of a column are found when they are first needed. For many rows that takes long: this does it for so
  /// many more of them, and is true when nothing is left.
  bool prepareValues(int columnId, int rows);
  /// In the column's sort order; only values that some row has.
  std::vector<CValue> values(int columnId);
  QString valueText(int columnId, std::uint32_t code) const;
  /// Until every "on" has had its "off", a code stays with its value, also when no row has it any more; otherwise it
  /// may become another's.
  void holdValues(int columnId, bool on);
  void setFilterByCodes(int columnId, const std::vector<std::uint32_t>& codes);

  // --- statistics: exact sums over the displayed rows ---

  /// Only number columns and added columns with values have sums.
  void setSum(int columnId, bool on);
  bool hasSum(int columnId) const;
  bool hasSums() const;
  /// As the column shows numbers; empty without a sum, "…" while it is not ready.
  QString sumText(int columnId) const;
  /// After another filter the sums of many rows come with `prepareSums`.
  bool areSumsReady() const;
  /// Takes so many more rows into the sums; true when nothing is left.
  bool prepareSums(int rows);

  /// Bytes held for the rows beyond the records themselves.
  std::size_t memory() const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
