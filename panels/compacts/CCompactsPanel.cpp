// The panel's frame: construction, parameter string, events.

#include "compacts/CCompactsPanel.h"

#include "compacts/panel_ids.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "host_api.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QStringList>
#include <QTimer>

namespace VN {

namespace {

constexpr int REFRESH_PERIOD_MS = 100;
constexpr QChar PARAM_SEPARATOR = u'|';

QString typeKeyText() { return QStringLiteral("cpt"); }

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
  // Queued also where the client answers on the GUI thread, when it stops: nobody may open a box inside a reply.
  connect(this, &CCompactsPanel::sigOperatorInfo, this, &CCompactsPanel::slotOperatorInfo, Qt::QueuedConnection);
  connect(this, &CCompactsPanel::sigOperatorCompactRenewInfo, this, &CCompactsPanel::slotOperatorCompactRenewInfo,
          Qt::QueuedConnection);
  connect(CTradeClient::instance(), &CTradeClient::sigLoginStatus, this, &CCompactsPanel::slotLoginStatus);
  m_refreshTimer = new QTimer(this);
  connect(m_refreshTimer, &QTimer::timeout, this, &CCompactsPanel::slotTimeout);
  m_refreshTimer->start(REFRESH_PERIOD_MS);
  if (m_mode != ModeOrderPanel) return;
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (account && isBrokerTypeMatchTradeType(account->brokerType, rdservice::TraderTypeStockCredit, false))
      requestAccount(account->getKey());
}

CCompactsPanel::~CCompactsPanel() {
  m_lifeline.close();
  QObject::disconnect(this, nullptr, nullptr, nullptr);
  if (CTradeClient* client = CTradeClient::instance()) client->disconnect(this);
  m_unclosedSubscriptions.clear();
  m_closedSubscriptions.clear();
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
    int view = fields.at(ParamView).toInt(&isNumber, 10);
    if (view == ViewPriority && !hasPrioritySettingAuth()) view = ViewUnclosed;
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
  if (m_changeTable != nullptr) m_changeTable->clearData();
  if (m_staticsTable != nullptr) {
    m_staticsTable->clearData();
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
    case GW::EventItemClicked:
      if (p2 != IdCompactMode)
        handleButtonClicked(p1);
      else if (p1 == CompactModeLiabilities || p1 == CompactModeAccounts)
        setCompactMode(p1 == CompactModeAccounts);
      return true;
    case GW::EventTextClicked:
      if (p1 == IdRenewalLink) applyRenewal();
      return true;
    case GW::EventComboChanged:
      if (p1 == IdAccountCombo && m_accountCombo != nullptr)
        setAccount(m_accountCombo->currentKey().toStdString(), true, true);
      return true;
    case GW::EventCellEdited:
      if (data != nullptr) checkPriorityCell(text, *static_cast<const rdservice::IDataPtr*>(data));
      return true;
    default: return ITradeDockableWidget::handleEvent(type, p1, p2, text, data);
  }
}

}  // namespace VN
