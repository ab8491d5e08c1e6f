#pragma once

#include "vn/CHpfDataTable.h"

#include "gw/view/CHpfTableView.h"

#include <QPoint>
#include <QString>

#include <set>

class QMenu;

namespace VN {

struct CHpfDataTable::Private {
  Private(CHpfDataTable* table, int type, int flags)
      : q(table), view(table->findChild<GW::CHpfTableView*>()), recordType(type), menuFlags(flags), extraData(*table) {}

  /// Where the menu was opened. Rows may move while it is open, so that the cell's text is taken then.
  struct CPlace {
    bool isCell;
    QString text;
  };

  void showMenu(const QPoint& position);
  void copyCell(const CPlace& place);
  void copyRows(const CPlace&);
  void fitColumns(const CPlace&) { q->adjustVisibleRowsColumnWidth(); }
  void find(const CPlace&) { Q_EMIT view->sigFindRequested(); }
  void clearFilters(const CPlace&);
  bool isAlways(const CPlace&) const { return true; }
  bool hasCell(const CPlace& place) const { return place.isCell; }
  bool hasFilter(const CPlace&) const;
  void addColumnChooser(QMenu& menu);
  void addStatisticsSwitch(QMenu& menu);
  void showStatistics(bool shown);
  /// Whether the column takes part in the statistics row.
  void setStatistics(int columnId, bool enabled);

  CHpfDataTable* q;
  GW::CHpfTableView* view;
  int recordType;
  int menuFlags;
  int tradeType = 0;
  bool isStatisticsShown = true;
  std::set<int> statistics;  ///< columns of the statistics row, also while it is not shown
  CHpfExtraDataModel extraData;
};

}  // namespace VN
