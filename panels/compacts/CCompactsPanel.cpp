// The panel's frame: construction, layout, parameter string, events.

#include "compacts/CCompactsPanel.h"

#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsPageTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "host_api.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"

#include <QStringList>
#include <QTimer>

#include <type_traits>

namespace VN {

namespace {

constexpr int REFRESH_PERIOD_MS = 100;
constexpr QChar PARAM_SEPARATOR = u'|';

constexpr const char* CHANGE_DETAIL_MODULE = "mdl_order_credit_compact_change_detail";

struct CViewButton {
  int id;
  const char* text;
  const char* module;  ///< right that it needs; null for none
};

// In the order of the toolbar.
constexpr CViewButton VIEW_BUTTONS[] = {
    {ViewUnclosed, "未了结合约", nullptr},
    {ViewClosed, "已了结合约", nullptr},
    {ViewStatistics, "负债统计", nullptr},
    {ViewChanges, "负债变动明细", CHANGE_DETAIL_MODULE},
};

bool isAllowed(const char* module) {
  using luawrapper::LuaModuleCtrl;
  return module == nullptr || LuaModuleCtrl::instance()->checkModule(LuaModuleCtrl::Order, module);
}

QString typeKeyText() { return QStringLiteral("cpt"); }
QString refreshText() { return QStringLiteral("刷新"); }

}  // namespace

CCompactsPanel::CCompactsPanel(int panelId, QWidget* parent, int mode)
    : ITradeDockableWidget(typeKeyText(), panelId, getDockWidgetInfo(typeKeyText()), parent), m_mode(mode) {
  if (host::contractVersion() != host::CONTRACT_VERSION) {
    constexpr utils::CLogSite SITE{"CCompactsPanel.cpp", "VN::CCompactsPanel::CCompactsPanel(int, QWidget*, int)"};
    utils::logError(SITE, "[CCompactsPanel] contract version {0} of the client, {1} of the panel",
                    host::contractVersion(), host::CONTRACT_VERSION);
    return;
  }
  rdservice::registerMetaTypes();
  createUi();
  m_uiReady = true;
  connect(CTradeClient::instance(), &CTradeClient::sigLoginStatus, this, &CCompactsPanel::slotLoginStatus);
  m_refreshTimer = new QTimer(this);
  connect(m_refreshTimer, &QTimer::timeout, this, &CCompactsPanel::slotTimeout);
  m_refreshTimer->start(REFRESH_PERIOD_MS);
}

CCompactsPanel::~CCompactsPanel() {
  QObject::disconnect(this, nullptr, nullptr, nullptr);
  m_unclosedSubscriptions.clear();
  m_closedSubscriptions.clear();
}

void CCompactsPanel::createUi() {
  if (m_mode != 0) return;

  auto* list = new GW::CWidgetList(Qt::Vertical, this);
  list->setMargins(0, 0, 0, 0);
  list->setSpacing(0);
  m_toolbar = new GW::CAutoExpandToolBar(list);
  m_toolbar->setBackgroundImage(QStringLiteral("vn_img_op_hedge_type_bg"));
  m_radioGroup = new GW::CRadioButtonGroup(m_toolbar);
  m_refreshButton = new CCountDownButton(IdRefreshButton, refreshText(), m_toolbar);
  m_refreshButton->setFont(GW::CUiResource::getFont(QStringLiteral("fnt_default_normal_fix")));
  m_toolbar->addWidget(m_refreshButton);
  m_toolbar->addSeparator();
  m_accountCombo = new GW::CComboBox(IdAccountCombo, m_toolbar);
  m_accountCombo->setAccessibleName(QStringLiteral("资金账号"));
  m_toolbar->addWidget(m_accountCombo);
  m_toolbar->addSeparator();
  initAccountCombobox();

  for (const CViewButton& view : VIEW_BUTTONS)
    if (isAllowed(view.module)) m_radioGroup->addButton(view.id, QString::fromUtf8(view.text));
  m_toolbar->addWidget(m_radioGroup);
  list->addFixedWidget(m_toolbar);

  const std::string account = m_accountCombo->currentKey().toStdString();
  m_unclosedTable = createTable(TableUnclosedCompacts, list);
  m_unclosedTable->setTradeType(rdservice::TraderTypeStockCredit);
  m_unclosedTable->setAccount(account, false, false);
  list->addStretchWidget(m_unclosedTable);
  m_closedTable = createTable(TableClosedCompacts, list);
  m_closedTable->setAccount(account, false, false);
  m_closedTable->hide();
  list->addStretchWidget(m_closedTable);
  m_staticsTable = new CCompactsStaticsTable(list);
  m_staticsTable->setAccount(account, false, false);
  m_staticsTable->hide();
  connect(m_staticsTable, &CCompactsStaticsTable::sigQueryData, this, &CCompactsPanel::slotQueryData);
  list->addStretchWidget(m_staticsTable);
  if (isAllowed(CHANGE_DETAIL_MODULE)) {
    m_changeTable = new CCompactsChangeTable(list);
    m_changeTable->setAccount(account, false, false);
    m_changeTable->hide();
    connect(m_changeTable, &CCompactsChangeTable::sigQueryData, this, &CCompactsPanel::slotQueryData);
    list->addStretchWidget(m_changeTable);
  }

  setInnerWidget(list);
  m_radioGroup->setChecked(ViewUnclosed);
  handleButtonClicked(ViewUnclosed);
}

CCompactsBaseTable* CCompactsPanel::createTable(int tableId, QWidget* parent) {
  const auto connected = [this](auto* table) -> CCompactsBaseTable* {
    connect(table, &std::remove_pointer_t<decltype(table)>::sigQueryData, this, &CCompactsPanel::slotQueryData);
    return table;
  };
  const rdservice::ConfigCollector& broker = *rdservice::ConfigCollector::instance();
  const int type = recordTypeOfTable(tableId);
  if (broker.useSplitPageOfStkCompact() && broker.calcCompactType())
    return connected(new CCompactsPageTable(m_mode, tableId, type, parent));
  return connected(new CCompactsTable(m_mode, tableId, type, parent));
}

QString CCompactsPanel::param() const {
  utils::assertGui();
  QStringList fields;
  if (m_unclosedTable != nullptr) fields << m_unclosedTable->saveConfigStr();
  if (m_closedTable != nullptr) fields << m_closedTable->saveConfigStr();
  fields << QString();
  if (m_radioGroup != nullptr) fields << QString::number(m_radioGroup->checkedId());
  if (m_changeTable != nullptr) fields << m_changeTable->saveConfigStr();
  if (m_staticsTable != nullptr) fields << m_staticsTable->saveConfigStr();
  return fields.join(PARAM_SEPARATOR);
}

void CCompactsPanel::setParam(const QString& param) {
  utils::assertGui();
  const QStringList fields = param.split(PARAM_SEPARATOR);
  if (m_unclosedTable != nullptr && fields.size() > ParamUnclosedTable)
    m_unclosedTable->loadConfigStr(fields.at(ParamUnclosedTable));
  if (m_closedTable != nullptr && fields.size() > ParamClosedTable)
    m_closedTable->loadConfigStr(fields.at(ParamClosedTable));
  if (m_radioGroup != nullptr && fields.size() > ParamView) {
    bool isNumber = false;
    const int view = fields.at(ParamView).toInt(&isNumber, 10);
    if (isNumber && m_radioGroup->button(view) != nullptr) {
      m_radioGroup->setChecked(view);
      handleButtonClicked(view);
    }
  }
  if (m_changeTable != nullptr && fields.size() > ParamChangeTable)
    m_changeTable->loadConfigStr(fields.at(ParamChangeTable));
  if (m_staticsTable != nullptr && fields.size() > ParamStaticsTable)
    m_staticsTable->loadConfigStr(fields.at(ParamStaticsTable));
}

void CCompactsPanel::clear() {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->clearData(true);
  if (m_closedTable != nullptr) m_closedTable->clearData(true);
  if (m_changeTable != nullptr) m_changeTable->clear();
  if (m_staticsTable != nullptr) {
    m_staticsTable->clear();
    m_staticsTable->setSortColumn(m_staticsTable->getColumnIdByFileId(FileIdStatisticsCode), Qt::AscendingOrder);
    m_staticsTable->updateTable();
  }
  constexpr utils::CLogSite SITE{"CCompactsPanel.cpp", "virtual void VN::CCompactsPanel::clear()"};
  utils::logInfo(SITE, "[CCompactsPanel] clear");
  m_requestedAccounts.clear();
}

void CCompactsPanel::adjustTableWidth() {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->adjustVisibleRowsColumnWidth();
}

bool CCompactsPanel::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  if (!m_uiReady) return true;
  switch (type) {
    case GW::EventButtonClicked:
    case GW::EventItemClicked: handleButtonClicked(p1); return true;
    case GW::EventComboChanged:
      if (p1 == IdAccountCombo) setAccount(m_accountCombo->currentKey().toStdString(), true, true);
      return true;
    default: return ITradeDockableWidget::handleEvent(type, p1, p2, text, data);
  }
}

}  // namespace VN
