#pragma once

#include <cstddef>
#include <functional>

namespace GW {

class CTableModel;
class CTableStore;

/// How much one turn of a drain may do.
struct CDrainLimits {
  std::size_t rowsPerStep;  ///< taken under one lock
  std::size_t rowsPerTurn;
  std::function<bool()> isTimeUp;  ///< asked between steps
};

/// Moves changes from the store to the model until nothing is left or a limit is reached; true when nothing is left.
/// At least one step is done. GUI thread.
bool drainTable(CTableStore& store, CTableModel& model, const CDrainLimits& limits);

}  // namespace GW
