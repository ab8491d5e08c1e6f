#include "gw/column_delegates.h"

namespace GW {

CBaseTableColumnSimpleTextDelegate::CBaseTableColumnSimpleTextDelegate(int columnId,
                                                                       CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {}

CBaseTableColumnSimpleTextDelegate::~CBaseTableColumnSimpleTextDelegate() = default;

}  // namespace GW
