#pragma once

#include "CTestRecord.h"

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/column_delegates.h"
#include "gw/view/CHpfTableView.h"

#include <optional>

/// A text column that is sorted by the cells' values.
class CTestRankDelegate : public GW::CBaseTableColumnSimpleTextDelegate {
 public:
  CTestRankDelegate(int columnId, GW::CBaseHighPerformanceTable* table)
      : CBaseTableColumnSimpleTextDelegate(columnId, table) {
    setValueOrder(&rankOf);
  }
  using CBaseTableColumnSimpleTextDelegate::itemValue;
  using CBaseTableColumnSimpleTextDelegate::setItemValue;

  static qint64 rankOf(std::optional<qint64> value) { return value ? -(*value % 9) : 100; }
};

/// A table of test records with a delegate column for each way of sorting cells, and one of extra values.
class CTestTable : public GW::CStandardHpfTable {
 public:
  enum EPlainColumn : int {
    ColumnText = CTestRecord::ColumnCount,
    ColumnRanked,
    ColumnCheck,
    ColumnNumber,
    ColumnExtra,
    ColumnEnd
  };

  CTestTable() : CStandardHpfTable(1, nullptr) {
    addRecordColumns(CTestRecord::structDes());
    for (int id = ColumnText; id < ColumnEnd; ++id) {
      addPlainColumn(id, QString::fromUtf8("备注%1").arg(id), Qt::AlignLeft | Qt::AlignVCenter);
      if (id != ColumnExtra) setColumnDelegate(id, newDelegate(id));
    }
    for (const int id : {int(CTestRecord::ColumnVolume), int(CTestRecord::ColumnAmount), int(ColumnExtra)})
      setColumnSumVisible(id, true);
  }
  using CBaseHighPerformanceTable::setCellText;
  using CBaseHighPerformanceTable::setCellValue;

  /// Null for a column without one.
  GW::CBaseTableColumnWidgetDelegate* newDelegate(int columnId) {
    switch (columnId) {
      case ColumnText: return new GW::CBaseTableColumnSimpleTextDelegate(columnId, this);
      case ColumnRanked: return new CTestRankDelegate(columnId, this);
      case ColumnCheck: return new GW::CBaseTableColumnCheckBoxDelegate(columnId, this);
      case ColumnNumber: return new GW::CBaseTableColumnLineeditDelegate(columnId, this);
      default: return nullptr;
    }
  }
  CTestRankDelegate& ranked() const { return static_cast<CTestRankDelegate&>(*columnDelegate(ColumnRanked)); }
  GW::CHpfTableView* view() const { return findChild<GW::CHpfTableView*>(); }
};
