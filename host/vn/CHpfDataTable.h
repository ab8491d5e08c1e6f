#pragma once

#include "gw/CBaseHighPerformanceTable.h"
#include "host_api.h"
#include "vn/CHpfExtraDataModel.h"

namespace VN {

/// A column that a table adds to those of its record type.
struct CHpfDataColumnProperty {
  QString title;
  int number = 0;       ///< by which saved layouts know the column, unique in the table; at least 1
  int kind = 0;         ///< 0 control, 2 number editor, 4 integer, 10 text; the reference client shows them alike
  int alignment = 132;  ///< Qt::Alignment; 132 is centred both ways
  int setting1 = 0;     ///< for the client
  int setting2 = 0;     ///< for the client
};

/// A table of the records of one type, with the columns of the type's field table. GUI thread unless the base says
/// otherwise.
class HOST_API CHpfDataTable : public GW::CStandardHpfTable {
 public:
  /// `recordType` is the type id of the rows; `menuFlags` selects entries of the context menu, 255 for all. Volumes and
  /// amounts are summed up in the statistics row.
  CHpfDataTable(int tableId, int recordType, QWidget* parent, int menuFlags);
  ~CHpfDataTable() override;

  int recordType() const;
  /// Trader type by which enumeration names are looked up. Before any column is added.
  void setTradeType(int tradeType);
  int tradeType() const;

  /// Adds a column and returns its id. `statistics`: take part in the statistics row; `movable`: the user may move it;
  /// `group`: heading it belongs to, empty for none (the reference client shows no headings).
  int addColumn(const CHpfDataColumnProperty& property, bool statistics, bool movable, const QString& group);

  /// The values of added columns that have no delegate. Never null; lives as long as the table.
  CHpfExtraDataModel* getExtraDataModel() const;

 private:
  friend class CHpfExtraDataModel;
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
