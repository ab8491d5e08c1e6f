#include "gw/column_delegates.h"

#include "gw/delegates/CDelegateControl.h"

#include "gw/table/CSharedRows.h"

namespace GW {

CBaseTableColumnCheckBoxDelegate::CBaseTableColumnCheckBoxDelegate(int columnId, CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {
  CDelegateControl::of(*this).kind = ECellControl::CheckBox;
}

CBaseTableColumnCheckBoxDelegate::~CBaseTableColumnCheckBoxDelegate() = default;

bool CBaseTableColumnCheckBoxDelegate::isAllChecked() const {
  return CDelegateControl::of(*this).rows->isAllChecked(columnId());
}

}  // namespace GW
