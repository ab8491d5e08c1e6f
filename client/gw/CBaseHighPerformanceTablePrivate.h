#pragma once

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/CTableModel.h"
#include "gw/CTableStore.h"
#include "gw/CTableView.h"

#include <memory>

namespace GW {

struct CBaseHighPerformanceTable::Private {
  explicit Private(CBaseHighPerformanceTable* table);
  ~Private();

  int addColumn(CTableColumn column);
  /// -1 when the column does not exist.
  int positionOf(int columnId) const;
  void onHeaderClicked(int columnId);

  CBaseHighPerformanceTable* q;
  std::shared_ptr<CTableStore> store;  ///< shared with the batches and delegates
  CTableModel model;
  CTableView* view;  ///< child of the table, deleted before the model
  int recordType = 0;
  bool isUpdating = false;
  bool isGoingOn = false;  ///< the next turn of updateTable is on its way
};

}  // namespace GW
