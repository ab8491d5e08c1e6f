#include "gw/column_delegates.h"

#include "gw/delegates/CDelegateControl.h"

#include "utils/threads.h"

namespace GW {

CBaseTableColumnLineeditDelegate::CBaseTableColumnLineeditDelegate(int columnId, CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {
  CDelegateControl::of(*this).kind = ECellControl::LineEdit;
}

CBaseTableColumnLineeditDelegate::~CBaseTableColumnLineeditDelegate() = default;

QWidget* CBaseTableColumnLineeditDelegate::editor() const {
  utils::assertGui();
  return CDelegateControl::of(*this).editor;
}

}  // namespace GW
