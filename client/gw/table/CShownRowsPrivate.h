#pragma once

#include "gw/table/CBlockOrder.h"
#include "gw/table/CColumnSum.h"
#include "gw/table/CKeyColumn.h"
#include "gw/table/CShownRows.h"
#include "gw/table/CSlotBits.h"
#include "gw/table/CValueColumn.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace GW {

struct CShownRows::Private : ITieBreaker {
  struct CColumn {
    CTableColumn column;
    std::unique_ptr<CItemColumn> items;    ///< made when a cell is set
    std::unique_ptr<CKeyColumn> keys;      ///< made when first sorted by
    std::unique_ptr<CValueColumn> values;  ///< made when first filtered by; of the first rows only until it is complete
    bool isSummed = false;
    CColumnSum allSum;    ///< of every row
    CColumnSum shownSum;  ///< of the rows that pass, while there is a filter
  };

  /// What a drain does to a row that is there already.
  struct CStep {
    int slot;
    std::size_t index;  ///< in the drain
    bool isWaiting;
    bool isMoved;   ///< its sort keys differ
    bool wasShown;  ///< its values passed the filters before
    bool isShown;   ///< they pass them now
  };

  /// A column whose cells a drain sets or unsets.
  struct CItemSource {
    CItemColumn* items;
    const CItemColumn* cells;  ///< null: all are unset

    /// The row's cell becomes the drain's.
    void copyCell(int slot, std::size_t index) const;
  };

  /// What is freed elsewhere. Values hold on to records too.
  struct CGarbage {
    std::vector<rdservice::IDataPtr> records;
    std::vector<std::unique_ptr<CValueColumn>> values;
    std::vector<std::unique_ptr<CItemColumn>> items;
  };

  // Cells and keys.
  CCell cell(const CColumn& column, int slot) const;
  CCell cell(int columnId, const CRowsDrain& drain, std::size_t index) const;
  bool decides(std::uint64_t key) const override;
  bool isBefore(int slot, int other) const override;
  bool finerKeys(const std::vector<int>& slots, int stage, std::vector<std::uint64_t>& keys) const override;
  bool decidesFiner(std::uint64_t key, int stage) const override;
  bool differs(int columnId, int slot, const CCell& changed) const;
  CKeyColumn& keysOf(int columnId);
  /// Complete.
  CValueColumn& valuesOf(int columnId);
  bool prepareValues(int columnId, std::size_t rows);

  // Filters and sums (CShownRowsFilter.cpp).
  bool isFiltered() const { return !filters.empty(); }
  bool passes(int slot) const { return !isFiltered() || passing.has(slot); }
  bool passesOthers(int slot, int exceptColumn) const;
  void updatePassing(int slot);
  void findPassing();
  void setFiltering(int columnId, const std::function<void(CValueColumn&)>& accept);

  // Sums (CShownRowsSums.cpp).
  static constexpr int SUMMED_AT_ONCE = 64;
  void sumChangedRow(const CStep& step, const CRowsDrain& drain);
  void sumNewRows(std::size_t first);
  void sumColumn(CColumn& column);
  void sumAll();
  void sumShownAnew();
  bool prepareSums(int rows);

  // Orders.
  int rowCount() const;
  int slotAt(int row) const;
  int rowOf(int slot) const;
  bool isWaiting(int slot) const { return static_cast<std::size_t>(slot) >= ordered; }
  COrderBy orderBy() const;
  void rebuildOrders();
  void rebuildShownOrder();

  // Changes.
  void tell(const CRowsChange& change, const std::function<void()>& act);
  void drop(const std::vector<int>& newSlots);
  void dropAll();
  std::vector<CStep> plan(const CRowsDrain& drain, std::size_t oldCount);
  CRowsChange kindOf(const std::vector<CStep>& steps, std::size_t newOrdered) const;
  void changeRows(CRowsDrain& drain, const std::vector<CStep>& steps);
  void addRows(CRowsDrain& drain, std::size_t oldCount);
  void orderWaiting();
  std::vector<CItemSource> itemSourcesOf(const CRowsDrain& drain);
  void takeValues(int columnId, const CRowsDrain& drain, std::size_t oldCount);
  void replaceRow(CRowsDrain& drain, std::size_t index, int slot);
  bool remakeVoidKeys();

  IRowsObserver* observer = nullptr;
  bool isChanging = false;  ///< the observer has been told of a change that is not done yet
  unsigned clears = 0;
  std::vector<std::unique_ptr<CColumn>> columns;
  std::vector<rdservice::IDataPtr> records;  ///< by slot
  std::vector<CSortColumn> sort;
  std::vector<int> filters;  ///< columns with a filter
  std::size_t ordered = 0;   ///< the rows from this slot on wait for their place, and are not displayed yet
  CBlockOrder order;         ///< of every row, while sorted
  CBlockOrder shownOrder;    ///< of the rows that pass, while there is a filter
  CSlotBits passing;         ///< rows that pass, while there is a filter; ahead of the rows while they are applied
  int shownSummed = 0;       ///< the sums of the rows that pass are those of the slots below, until all are in
};

}  // namespace GW
