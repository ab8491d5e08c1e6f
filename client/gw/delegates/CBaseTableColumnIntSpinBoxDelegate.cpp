#include "gw/column_delegates.h"

#include "gw/delegates/CDelegateControl.h"

#include "utils/threads.h"

#include <cassert>

namespace GW {

CBaseTableColumnIntSpinBoxDelegate::CBaseTableColumnIntSpinBoxDelegate(int columnId,
                                                                       CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {
  CDelegateControl::of(*this).kind = ECellControl::IntSpinBox;
}

CBaseTableColumnIntSpinBoxDelegate::~CBaseTableColumnIntSpinBoxDelegate() = default;

void CBaseTableColumnIntSpinBoxDelegate::setIntSpinBoxInfo(int minimum, int maximum, int step, double, int) {
  utils::assertGui();
  assert(minimum <= maximum && step > 0 && "a spin box needs a range to step through");
  CDelegateControl& control = CDelegateControl::of(*this);
  control.minimum = minimum;
  control.maximum = maximum;
  control.step = step;
}

int CBaseTableColumnIntSpinBoxDelegate::itemInt(const QString& key) const { return itemText(key).toInt(); }

}  // namespace GW
