#pragma once

#include "gw/column_delegates.h"

#include <QString>

namespace GW {

/// The column that shows each compact's current repay priority; also knows the priority by row key, which the column
/// sorts by. The numbers stand in the per-key store, so that they come and go with the rows. Any thread.
class CBaseTableColumnRepayPriorityTextDelegate : public CBaseTableColumnSimpleTextDelegate {
 public:
  enum : int {
    NoPriority = 1000001,    ///< look-up of a compact without priority: sorts behind every priority
    UnknownKey = 2147483647  ///< look-up of a key without entry
  };

  CBaseTableColumnRepayPriorityTextDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnRepayPriorityTextDelegate() override;

  /// 1 to 999999, or one of the two values above.
  int priority(const QString& key) const;
  /// 0 for none. Inside a batch it takes effect with the batch's rows.
  void setPriority(const QString& key, int priority);
};

}  // namespace GW
