#pragma once

#include "gw/table/CItemColumn.h"
#include "rdservice/IData.h"

#include <utility>
#include <vector>

namespace GW {

/// Changes that the GUI thread takes from the shared side of a table, to be applied in this order: rows dropped, then
/// rows new or replaced. Slots are numbers of arrival.
struct CRowsDrain {
  bool cleared = false;       ///< every row is dropped
  bool replaced = false;      ///< rows are dropped and renumbered by `newSlots`
  std::vector<int> newSlots;  ///< by old slot: the new one, -1 for dropped; the kept ones keep their order
  std::vector<int> slots;     ///< old ones whose record or cells changed, each once; then new ones, rising without gaps
  std::vector<rdservice::IDataPtr> records;        ///< of `slots`
  std::vector<std::pair<int, CItemColumn>> items;  ///< by column id; cells by position in `slots`
  int total = 0;                                   ///< rows that there are by now, so that room is made once
  bool isMore = false;                             ///< more is to follow at once
  bool isBusy = false;                             ///< a writer held the lock: nothing more was taken

  bool isEmpty() const { return !cleared && !replaced && slots.empty(); }
};

}  // namespace GW
