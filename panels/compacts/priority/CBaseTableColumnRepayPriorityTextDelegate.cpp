#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"

namespace GW {

CBaseTableColumnRepayPriorityTextDelegate::CBaseTableColumnRepayPriorityTextDelegate(int columnId,
                                                                                     CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnSimpleTextDelegate(columnId, deliverer) {}

CBaseTableColumnRepayPriorityTextDelegate::~CBaseTableColumnRepayPriorityTextDelegate() = default;

int CBaseTableColumnRepayPriorityTextDelegate::priority(const QString& key) const {
  const utils::CMutexLock lock(m_mutex);
  const auto found = m_priorities.constFind(key);
  if (found == m_priorities.constEnd()) return UnknownKey;
  return *found != 0 ? *found : NoPriority;
}

void CBaseTableColumnRepayPriorityTextDelegate::setPriority(const QString& key, int priority) {
  change(key, [this, key, priority] {
    const utils::CMutexLock lock(m_mutex);
    m_priorities.insert(key, priority);
  });
}

void CBaseTableColumnRepayPriorityTextDelegate::clearPriorities() {
  const utils::CMutexLock lock(m_mutex);
  m_priorities.clear();
}

}  // namespace GW
