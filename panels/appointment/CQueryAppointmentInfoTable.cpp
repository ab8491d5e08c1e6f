#include "appointment/CQueryAppointmentInfoTable.h"

#include "gw/column_delegates.h"
#include "gw/table_flags.h"
#include "gw/widget_events.h"
#include "utils/threads.h"

#include <algorithm>

namespace VN {

namespace {

constexpr int TABLE_NUMBER = 3;
constexpr int MENU_FLAGS = 255;
constexpr int CENTRED = 132;

CHpfDataColumnProperty columnProperty(const QString& title, int number, int kind) {
  CHpfDataColumnProperty property;
  property.title = title;
  property.number = number;
  property.kind = kind;
  property.alignment = CENTRED;
  return property;
}

QString keyOf(const rdservice::IData& record) { return QString::fromStdString(record.getKey()); }

}  // namespace

CQueryAppointmentInfoTable::CQueryAppointmentInfoTable(QWidget* parent)
    : CHpfDataTable(TABLE_NUMBER, TABLE_ID, parent, MENU_FLAGS) {
  setObjectName(QStringLiteral("appointmentTable"));
  setTableFlags(tableFlags() | GW::TableFlagHeaderCheckBox);
}

CQueryAppointmentInfoTable::~CQueryAppointmentInfoTable() = default;

void CQueryAppointmentInfoTable::setUpColumns() {
  utils::assertGui();
  m_checkColumn = addColumn(columnProperty(QString(), 1, 0), false, true, QString());
  m_check = new GW::CBaseTableColumnCheckBoxDelegate(m_checkColumn, this);
  setColumnDelegate(m_checkColumn, m_check);
  setColumnCheckBoxVisible(m_checkColumn, true);
  m_daysColumn = addColumn(columnProperty(QStringLiteral("展期天数"), 2, 2), false, true, QString());
  m_days = new GW::CBaseTableColumnIntSpinBoxDelegate(m_daysColumn, this);
  m_days->setIntSpinBoxInfo(0, MAX_DAYS, 1, 1.0, 0);
  setColumnDelegate(m_daysColumn, m_days);
  moveColumn(m_checkColumn, 0);
  moveColumn(m_daysColumn, 1);
}

std::vector<rdservice::IDataPtr> CQueryAppointmentInfoTable::checkedRecords() const {
  utils::assertGui();
  std::vector<rdservice::IDataPtr> checked;
  for (int row = 0, rows = m_check != nullptr ? rowCount() : 0; row < rows; ++row) {
    const rdservice::IDataPtr record = getData(row);
    if (record && m_check->isItemChecked(keyOf(*record))) checked.push_back(record);
  }
  return checked;
}

int CQueryAppointmentInfoTable::renewalDays(const std::string& key) const {
  utils::assertGui();
  return m_days != nullptr ? m_days->itemInt(QString::fromStdString(key)) : 0;
}

void CQueryAppointmentInfoTable::markNewRows(const std::vector<rdservice::IDataPtr>& records) {
  utils::assertGui();
  for (const rdservice::IDataPtr& record : records) {
    if (!record || m_check == nullptr) continue;
    const QString key = keyOf(*record);
    m_check->setItemVisible(key, true, 0);
    m_check->setItemChecked(key, true, 0, 1);
    m_check->setItemEnabled(key, true, 0);
  }
  for (const rdservice::IDataPtr& record : records) {
    if (!record || m_days == nullptr) continue;
    const QString key = keyOf(*record);
    m_days->setItemVisible(key, true);
    m_days->setItemText(key, QString::number(m_defaultDays));
  }
}

void CQueryAppointmentInfoTable::setDefaultRenewalDays(int days) {
  utils::assertGui();
  m_defaultDays = std::clamp(days, 0, MAX_DAYS);
  if (m_days == nullptr) return;
  const std::vector<rdservice::IDataPtr> held = getAllDatas();
  for (const rdservice::IDataPtr& record : held) {
    m_days->setItemVisible(keyOf(*record), true);
    m_days->setItemText(keyOf(*record), QString::number(m_defaultDays));
  }
  updateTable();
}

void CQueryAppointmentInfoTable::checkAll(bool on) {
  utils::assertGui();
  if (m_check == nullptr) return;
  bool isChanged = false;
  const std::vector<rdservice::IDataPtr> held = getAllDatas();
  for (const rdservice::IDataPtr& record : held) {
    const QString key = keyOf(*record);
    if (m_check->isItemChecked(key) == on) continue;
    m_check->setItemChecked(key, on, 0, 1);
    isChanged = true;
  }
  if (!isChanged) return;
  updateTable();
  updateColumn(m_checkColumn);
}

void CQueryAppointmentInfoTable::updateHeaderCheckBox() {
  utils::assertGui();
  if (m_check != nullptr) setHeaderCheckBoxState(m_checkColumn, m_check->isAllChecked());
}

bool CQueryAppointmentInfoTable::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  switch (type) {
    case GW::EventCheckChanged:
      if (p1 == m_checkColumn) updateHeaderCheckBox();
      return true;
    case GW::EventSpinChanged: return true;
    default: return CHpfDataTable::handleEvent(type, p1, p2, text, data);
  }
}

}  // namespace VN
