#include "compacts/tables/CCompactColumns.h"

#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_records.h"
#include "gw/CMessageBox.h"
#include "gw/column_delegates.h"
#include "gw/widget_events.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "vn/CHpfDataTable.h"

namespace VN {

using luawrapper::LuaModuleCtrl;

namespace {

constexpr int CENTRED = 132;
constexpr int SELECT_WIDTH = 40;
constexpr int MAX_RENEWAL_DAYS = 182;

constexpr const char* WARNING_TITLE = "警告";
constexpr const char* NO_RENEWAL_DAYS = "非金正柜台不可设置展期天数!";

/// Kinds of columns, see CHpfDataColumnProperty.
enum EColumnKind : int { KindControl = 0, KindNumberEditor = 2, KindText = 10 };

struct CColumnRow {
  ECompactColumn number;
  const char* title;
  EColumnKind kind;
  int setting;
};

constexpr CColumnRow SELECT{SelectColumn, "选择", KindControl, 1};
constexpr CColumnRow RENEWAL_DAYS{RenewalDaysColumn, "展期天数", KindNumberEditor, 2};
constexpr CColumnRow PRIORITY_TEXT{PriorityTextColumn, "偿还优先级", KindText, 0};
constexpr CColumnRow PRIORITY_EDIT{PriorityEditColumn, "偿还优先级设置", KindText, 0};

int addColumn(CHpfDataTable& table, const CColumnRow& row) {
  CHpfDataColumnProperty property;
  property.title = QString::fromUtf8(row.title);
  property.number = row.number;
  property.kind = row.kind;
  property.alignment = CENTRED;
  property.setting1 = row.setting;
  return table.addColumn(property, false, true, QString());
}

/// Adds the column with a delegate of its own.
template <class Delegate>
Delegate* addColumn(CHpfDataTable& table, const CColumnRow& row, int& columnId) {
  columnId = addColumn(table, row);
  auto* const delegate = new Delegate(columnId, &table);
  table.setColumnDelegate(columnId, delegate);
  return delegate;
}

bool isEnabled(LuaModuleCtrl::ELevel level, const char* key) {
  return LuaModuleCtrl::instance()->checkModule(level, key);
}

void hidePriorityField(CHpfDataTable& table) {
  table.setColumnHidden(table.getColumnIdByFileId(FileIdUnclosedPriority), true);
}

}  // namespace

void CCompactColumns::build(CHpfDataTable& table, bool singleSelect) {
  m_table = &table;
  if (table.getID() != TableUnclosedCompacts) return;
  if (singleSelect) {
    if (isSpecialCounter() && !isEnabled(LuaModuleCtrl::Auth, "mdl_auth_credit_compact_order_disable_select"))
      addRadio(table);
  } else {
    if (isEnabled(LuaModuleCtrl::Order, "mdl_order_compact_renewal_apply") && isSpecialCounter()) addRenewal(table);
    if (hasPrioritySettingAuth())
      addPriority(table);
    else
      hidePriorityField(table);
  }
  if (select >= 0) {
    table.moveColumn(select, 0);
    table.setColumnWidth(select, SELECT_WIDTH);
  }
  if (table.recordType() == rdservice::RecordStkUnClosedCompacts)
    table.moveColumnBehind(priorityText, table.getColumnIdByFileId(FileIdUnclosedCode));
  else if (table.recordType() == rdservice::RecordStkClosedCompacts)
    table.moveColumnBehind(priorityText, table.getColumnIdByFileId(FileIdClosedCode));
}

void CCompactColumns::addRadio(CHpfDataTable& table) {
  radio = addColumn<GW::CBaseTableColumnRadioButtonDelegate>(table, SELECT, select);
  hidePriorityField(table);
}

void CCompactColumns::addRenewal(CHpfDataTable& table) {
  check = addColumn<GW::CBaseTableColumnCheckBoxDelegate>(table, SELECT, select);
  days = addColumn<GW::CBaseTableColumnIntSpinBoxDelegate>(table, RENEWAL_DAYS, renewalDays);
  days->setIntSpinBoxInfo(0, MAX_RENEWAL_DAYS, 1, 1.0, 0);
}

void CCompactColumns::addPriority(CHpfDataTable& table) {
  priorityLabel = addColumn<GW::CBaseTableColumnRepayPriorityTextDelegate>(table, PRIORITY_TEXT, priorityText);
  priorityEditor = addColumn<GW::CBaseTableColumnLineeditDelegate>(table, PRIORITY_EDIT, priorityEdit);
}

void CCompactColumns::setSelectVisible(bool visible) const {
  if (select < 0) return;
  m_table->setColumnVisible(select, visible);
  m_table->setColumnChoosable(select, visible);
}

void CCompactColumns::clearRadioSelection() const {
  const QString key = radio != nullptr ? radio->checkedKey() : QString();
  if (key.isEmpty()) return;
  resetSelectItem(key);
  m_table->updateTable();
}

rdservice::IDataPtr CCompactColumns::checkedRadio() const {
  const QString key = radio != nullptr ? radio->checkedKey() : QString();
  return key.isEmpty() ? nullptr : m_table->getDataByKey(key.toStdString());
}

QList<rdservice::IDataPtr> CCompactColumns::checkedRows() const {
  QList<rdservice::IDataPtr> checked;
  if (check == nullptr) return checked;
  const int rows = m_table->rowCount();
  checked.reserve(rows);
  for (int row = 0; row < rows; ++row) {
    const rdservice::IDataPtr record = m_table->getData(row);
    if (check->isItemChecked(QString::fromStdString(record->getKey()))) checked.push_back(record);
  }
  return checked;
}

bool CCompactColumns::handleEvent(int type, const QString& key) const {
  switch (type) {
    case GW::EventSpinBegin: beginRenewalDays(key); return true;
    case GW::EventButtonClicked:
    case GW::EventItemClicked:
    case GW::EventCheckChanged:
    case GW::EventSpinChanged:
    case GW::EventLineEditBegin: return true;
    default: return false;
  }
}

void CCompactColumns::beginRenewalDays(const QString& key) const {
  const rdservice::IDataPtr record = m_table->getDataByKey(key.toStdString());
  if (days == nullptr || !record || isRenewalCounter(counterTypeOf(*record))) return;
  days->setItemEnabled(key, false);
  m_table->updateTable();
  GW::CMessageBox::warning(m_table, QString::fromUtf8(WARNING_TITLE), QString::fromUtf8(NO_RENEWAL_DAYS));
}

void CCompactColumns::resetSelectItem(const QString& key) const {
  if (radio != nullptr) radio->resetItem(key);
  if (check != nullptr) check->resetItem(key);
}

void CCompactColumns::writePriority(const rdservice::CStkUnClosedCompacts& compact) const {
  if (priorityLabel == nullptr) return;
  const QString key = QString::fromStdString(compact.getKey());
  priorityLabel->setPriority(key, compact.repayPriority);
  priorityLabel->setItemText(key, compact.repayPriority != 0 ? QString::number(compact.repayPriority) : QString());
}

}  // namespace VN
