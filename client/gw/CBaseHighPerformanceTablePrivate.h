#pragma once

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/table/CSharedRows.h"
#include "gw/table/CShownRows.h"
#include "gw/view/CFilterMenu.h"
#include "gw/view/CFindBar.h"
#include "gw/view/CHpfTableView.h"
#include "gw/view/CSlicedTask.h"
#include "gw/view/CTableFace.h"

#include <QPointer>
#include <QTimer>

#include <memory>
#include <set>

namespace GW {

struct CBaseHighPerformanceTable::Private : IRowsObserver {
  explicit Private(CBaseHighPerformanceTable* table);
  ~Private() override;

  void rowsAboutToChange(const CRowsChange& change) override;
  void rowsChanged(const CRowsChange& change) override;

  int addColumn(CTableColumn column);
  /// Any thread.
  void changeCell(int columnId, const std::string& key, CItemChange item) const;
  /// -1 when the column does not exist.
  int positionOf(int columnId) const;
  void onSortRequested(int columnId, bool extend);
  void openFilterMenu(int columnId, const QRect& section);

  /// Takes what was handed over, within one turn; true when nothing is left.
  bool takeTurn();

  CBaseHighPerformanceTable* q;
  std::shared_ptr<CSharedRows> shared;  ///< also in the hands of batches and delegates
  CShownRows rows;
  CTableFace face;
  CHpfTableView* view;  ///< child of the table, deleted before the rows
  CFindBar* findBar;    ///< child of the table
  QPointer<CFilterMenu> filterMenu;
  CSlicedTask valueTask{nullptr};  ///< finds the values for the next filter menu
  std::set<int> unchoosableColumns;
  int recordType = 0;
  bool isUpdating = false;
  bool isAskedAgain = false;   ///< meanwhile, so that what came since is not forgotten
  bool isWriterBusy = false;   ///< the last turn ended because a writer held the rows
  bool isOrderingDue = false;  ///< every row is taken over, but the last ones stand in no order yet
  QTimer turnTimer;            ///< for the next turn of updateTable
};

}  // namespace GW
