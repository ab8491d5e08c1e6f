#include "gw/table_drain.h"

#include "gw/CTableModel.h"
#include "gw/CTableStore.h"

#include <algorithm>
#include <utility>

namespace GW {

bool drainTable(CTableStore& store, CTableModel& model, const CDrainLimits& limits) {
  bool isMore = true;
  std::size_t taken = 0;
  while (isMore && taken < limits.rowsPerTurn) {
    CTableDrain drain;
    // Steps are gathered and applied together; only dropped rows part them.
    do {
      const std::size_t before = drain.rows.size();
      isMore = store.drain(std::min(limits.rowsPerStep, limits.rowsPerTurn - taken), drain);
      taken += drain.rows.size() - before;
      if (drain.rows.size() == before) break;
      model.prepare(drain);
    } while (isMore && taken < limits.rowsPerTurn && !limits.isTimeUp());
    const bool isBusy = drain.isBusy;
    model.apply(std::move(drain));
    if (isBusy || limits.isTimeUp()) break;
  }
  return !isMore;
}

}  // namespace GW
