#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"

namespace GW {

namespace {

int priorityOf(std::optional<qint64> value) {
  using CDelegate = CBaseTableColumnRepayPriorityTextDelegate;
  if (!value) return CDelegate::UnknownKey;
  return *value != 0 ? int(*value) : int(CDelegate::NoPriority);
}

}  // namespace

CBaseTableColumnRepayPriorityTextDelegate::CBaseTableColumnRepayPriorityTextDelegate(
    int columnId, CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnSimpleTextDelegate(columnId, deliverer) {
  setValueOrder(&priorityOf);
}

CBaseTableColumnRepayPriorityTextDelegate::~CBaseTableColumnRepayPriorityTextDelegate() = default;

int CBaseTableColumnRepayPriorityTextDelegate::priority(const QString& key) const { return priorityOf(itemValue(key)); }

void CBaseTableColumnRepayPriorityTextDelegate::setPriority(const QString& key, int priority) {
  setItemValue(key, priority);
}

}  // namespace GW
