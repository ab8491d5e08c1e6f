#include "gw/column_delegates.h"

#include "gw/delegates/CDelegateControl.h"

#include "gw/table/CSharedRows.h"

namespace GW {

CBaseTableColumnRadioButtonDelegate::CBaseTableColumnRadioButtonDelegate(int columnId,
                                                                         CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {
  CDelegateControl::of(*this).kind = ECellControl::RadioButton;
}

CBaseTableColumnRadioButtonDelegate::~CBaseTableColumnRadioButtonDelegate() = default;

QString CBaseTableColumnRadioButtonDelegate::checkedKey() const {
  return QString::fromStdString(CDelegateControl::of(*this).rows->checkedKey(columnId()));
}

}  // namespace GW
