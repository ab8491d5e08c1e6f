#include "gw/column_delegates.h"

#include "gw/delegates/CDelegateControl.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/table/CSharedRows.h"

#include <utility>

namespace GW {

struct CBaseTableColumnWidgetDelegate::Private {
  int columnId;
  CDelegateControl control;

  void change(CItemChange& item, const QString& key) const {
    item.column = columnId;
    control.rows->change([&](CChangeSet& changes) { changes.add(item, key); });
  }
  void change(EItemPart part, const QString& key, bool on) const {
    CItemChange item;
    item.part = part;
    item.on = on;
    change(item, key);
  }
  CItemState item(const QString& key) const { return control.rows->item(columnId, key.toStdString()); }
};

CDelegateControl& CDelegateControl::of(CBaseTableColumnWidgetDelegate& delegate) { return delegate.m_d->control; }

const CDelegateControl& CDelegateControl::of(const CBaseTableColumnWidgetDelegate& delegate) {
  return delegate.m_d->control;
}

CBaseTableColumnWidgetDelegate::CBaseTableColumnWidgetDelegate(int columnId, CBaseHighPerformanceTable* deliverer)
    : CEventDeliverer(nullptr), m_d(new Private{columnId, {}}) {
  m_d->control.rows = deliverer->m_d->shared;
  setEventReceiver(deliverer);
}

CBaseTableColumnWidgetDelegate::~CBaseTableColumnWidgetDelegate() = default;

int CBaseTableColumnWidgetDelegate::columnId() const { return m_d->columnId; }

void CBaseTableColumnWidgetDelegate::setItemText(const QString& key, const QString& text, int) {
  CItemChange item;
  item.part = EItemPart::Text;
  item.text = text;
  m_d->change(item, key);
}

void CBaseTableColumnWidgetDelegate::setItemVisible(const QString& key, bool visible, int) {
  m_d->change(EItemPart::Visible, key, visible);
}

void CBaseTableColumnWidgetDelegate::setItemEnabled(const QString& key, bool enabled, int) {
  m_d->change(EItemPart::Enabled, key, enabled);
}

void CBaseTableColumnWidgetDelegate::setItemChecked(const QString& key, bool checked, int, int) {
  const bool isAlone = m_d->control.kind == ECellControl::RadioButton;
  m_d->change(isAlone ? EItemPart::CheckedAlone : EItemPart::Checked, key, checked);
}

void CBaseTableColumnWidgetDelegate::resetItem(const QString& key) { m_d->change(EItemPart::ResetCell, key, false); }

QString CBaseTableColumnWidgetDelegate::itemText(const QString& key) const { return m_d->item(key).text; }
bool CBaseTableColumnWidgetDelegate::isItemVisible(const QString& key) const { return m_d->item(key).visible; }
bool CBaseTableColumnWidgetDelegate::isItemEnabled(const QString& key) const { return m_d->item(key).enabled; }
bool CBaseTableColumnWidgetDelegate::isItemChecked(const QString& key) const { return m_d->item(key).checked; }
bool CBaseTableColumnWidgetDelegate::isEmpty() const { return !m_d->control.rows->hasText(m_d->columnId); }

void CBaseTableColumnWidgetDelegate::reset() { m_d->change(EItemPart::ResetColumn, QString(), false); }

void CBaseTableColumnWidgetDelegate::setValueOrder(std::function<qint64(std::optional<qint64> value)> order) {
  m_d->control.valueOrder = std::move(order);
}

void CBaseTableColumnWidgetDelegate::setItemValue(const QString& key, qint64 value) {
  CItemChange item;
  item.part = EItemPart::Value;
  item.value = value;
  m_d->change(item, key);
}

std::optional<qint64> CBaseTableColumnWidgetDelegate::itemValue(const QString& key) const {
  return m_d->item(key).value;
}

}  // namespace GW
