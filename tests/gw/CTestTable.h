#pragma once

#include "CTestRecord.h"

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/CTableView.h"
#include "gw/column_delegates.h"

#include <QHash>

/// A table of test records with two delegate columns: one sorted by its texts, one by a number of the row key.
class CTestTable : public GW::CStandardHpfTable {
 public:
  enum EPlainColumn : int { ColumnText = CTestRecord::ColumnCount, ColumnRanked, ColumnEnd };

  CTestTable() : CStandardHpfTable(1, nullptr) {
    addRecordColumns(CTestRecord::structDes());
    for (const int id : {ColumnText, ColumnRanked}) {
      const int added = addPlainColumn(id, QString::fromUtf8("备注%1").arg(id), Qt::AlignLeft | Qt::AlignVCenter);
      setColumnDelegate(added, new GW::CBaseTableColumnSimpleTextDelegate(added, this));
    }
    columnDelegate(ColumnRanked)->setSortKey(&rankOf);
  }

  static qint64 rankOf(const QString& rowKey) { return qHash(rowKey, 7U) % 9; }

  GW::CTableView* view() const { return findChild<GW::CTableView*>(); }
};
