#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"

namespace GW {

CBaseTableColumnRepayPriorityTextDelegate::CBaseTableColumnRepayPriorityTextDelegate(
    int columnId, CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnSimpleTextDelegate(columnId, deliverer) {}

CBaseTableColumnRepayPriorityTextDelegate::~CBaseTableColumnRepayPriorityTextDelegate() = default;

int CBaseTableColumnRepayPriorityTextDelegate::priority(const QString& key) const {
  const std::optional<qint64> value = itemValue(key);
  if (!value) return UnknownKey;
  return *value != 0 ? int(*value) : NoPriority;
}

void CBaseTableColumnRepayPriorityTextDelegate::setPriority(const QString& key, int priority) {
  setItemValue(key, priority);
}

}  // namespace GW
