#include "gw/column_delegates.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"

#include <utility>

namespace GW {

struct CBaseTableColumnWidgetDelegate::Private {
  int columnId;
  std::shared_ptr<CTableStore> store;
  std::function<qint64(const QString& rowKey)> sortKey;

  void change(EItemPart part, const QString& key, const QString& text, bool on, qint64 value = 0) {
    store->change([&](CTableChanges& changes) {
      changes.add(CItemChange{part, columnId, key.toStdString(), text, on, value});
    });
  }
  CItemState item(const QString& key) const { return store->item(columnId, key.toStdString()); }
};

CBaseTableColumnWidgetDelegate::CBaseTableColumnWidgetDelegate(int columnId, CBaseHighPerformanceTable* deliverer)
    : CEventDeliverer(nullptr), m_d(new Private{columnId, deliverer->m_d->store, nullptr}) {
  setEventReceiver(deliverer);
}

CBaseTableColumnWidgetDelegate::~CBaseTableColumnWidgetDelegate() = default;

int CBaseTableColumnWidgetDelegate::columnId() const { return m_d->columnId; }

void CBaseTableColumnWidgetDelegate::setItemText(const QString& key, const QString& text, int) {
  m_d->change(EItemPart::Text, key, text, false);
}

void CBaseTableColumnWidgetDelegate::setItemVisible(const QString& key, bool visible, int) {
  m_d->change(EItemPart::Visible, key, QString(), visible);
}

void CBaseTableColumnWidgetDelegate::setItemEnabled(const QString& key, bool enabled, int) {
  m_d->change(EItemPart::Enabled, key, QString(), enabled);
}

void CBaseTableColumnWidgetDelegate::setItemChecked(const QString& key, bool checked, int, int) {
  m_d->change(EItemPart::Checked, key, QString(), checked);
}

QString CBaseTableColumnWidgetDelegate::itemText(const QString& key) const { return m_d->item(key).text; }
bool CBaseTableColumnWidgetDelegate::isItemVisible(const QString& key) const { return m_d->item(key).visible; }
bool CBaseTableColumnWidgetDelegate::isItemEnabled(const QString& key) const { return m_d->item(key).enabled; }
bool CBaseTableColumnWidgetDelegate::isItemChecked(const QString& key) const { return m_d->item(key).checked; }
bool CBaseTableColumnWidgetDelegate::isEmpty() const { return !m_d->store->hasText(m_d->columnId); }

void CBaseTableColumnWidgetDelegate::reset() { m_d->change(EItemPart::ResetColumn, QString(), QString(), false); }

void CBaseTableColumnWidgetDelegate::setSortKey(std::function<qint64(const QString& rowKey)> key) {
  m_d->sortKey = std::move(key);
}

const std::function<qint64(const QString& rowKey)>& CBaseTableColumnWidgetDelegate::sortKey() const {
  return m_d->sortKey;
}

void CBaseTableColumnWidgetDelegate::setItemValue(const QString& key, qint64 value) {
  m_d->change(EItemPart::Value, key, QString(), false, value);
}

std::optional<qint64> CBaseTableColumnWidgetDelegate::itemValue(const QString& key) const {
  return m_d->item(key).value;
}

CBaseTableColumnSimpleTextDelegate::CBaseTableColumnSimpleTextDelegate(int columnId,
                                                                       CBaseHighPerformanceTable* deliverer)
    : CBaseTableColumnWidgetDelegate(columnId, deliverer) {}

CBaseTableColumnSimpleTextDelegate::~CBaseTableColumnSimpleTextDelegate() = default;

}  // namespace GW
