// The panel's query cycle: when tables may query, the manual refresh, the view switch.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "gw/CMessageBox.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "panel_texts.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CCountDownButton.h"
#include "vn/CUserConfig.h"

#include <QPointer>

namespace VN {

namespace {

constexpr utils::CLogSite BUTTON_SITE{"CCompactsPanel.cpp", "void VN::CCompactsPanel::handleButtonClicked(int)"};

struct CCompactTypeRule {
  int operationType;
  int repayType;  ///< ANY_REPAY for every one
  rdservice::EKVCompactType compactType;
};

constexpr int ANY_REPAY = -1;

// The first rule that fits holds; without one there is no restriction.
constexpr CCompactTypeRule COMPACT_TYPES[] = {
    {rdservice::OperationBuyToReturn, ANY_REPAY, rdservice::CompactTypeSecuritiesLending},
    {rdservice::OperationDirectReturn, ANY_REPAY, rdservice::CompactTypeSecuritiesLending},
    {rdservice::OperationSpecialBuyToReturn, ANY_REPAY, rdservice::CompactTypeSecuritiesLending},
    {rdservice::OperationSellToRepay, ANY_REPAY, rdservice::CompactTypeFinancing},
    {rdservice::OperationDirectRepay, rdservice::RepayTypeLendingFee, rdservice::CompactTypeSecuritiesLending},
    {rdservice::OperationDirectRepay, rdservice::RepayTypeLendingInterest, rdservice::CompactTypeSecuritiesLending},
    {rdservice::OperationDirectRepay, ANY_REPAY, rdservice::CompactTypeFinancing},
};

}  // namespace

bool CCompactsPanel::startQuery(bool byRefreshButton) {
  if (m_refreshButton == nullptr) return false;
  const rdservice::ConfigCollector& broker = *rdservice::ConfigCollector::instance();
  // Without paging the sense of the switch is inverted: then compacts by type are queried by the refresh button only.
  if (!byRefreshButton) return broker.useSplitPageOfStkCompact() == broker.calcCompactType();
  if (m_accountCombo != nullptr) m_accountCombo->setEnabled(false);
  if (m_refreshButton->isLocked() || !m_refreshButton->isEnabled()) return false;
  if (!broker.calcCompactType()) return true;
  m_refreshButton->setTimeInterval(getConfig()->getQueryCompacInterval());
  return true;
}

void CCompactsPanel::handleButtonClicked(int id) {
  switch (id) {
    case ViewUnclosed:
    case ViewClosed:
    case ViewChanges:
    case ViewStatistics:
    case ViewPriority: switchView(id); break;
    case IdSavePriority: savePriority(); break;
    case IdOrderPriority:
      if (confirm(QStringLiteral("是否按当前排序设置优先级?"))) priorityOrderSetting();
      break;
    case IdClearPriority:
      if (confirm(QStringLiteral("是否清空偿还优先级?"))) clearPriority();
      break;
    case IdRefreshButton: refreshByHand(); break;
    case IdImportPriority: tryImportRepayPriority(); break;
    case IdExportPriority: tryExportRepayPriority(); break;
    default: break;
  }
}

bool CCompactsPanel::confirm(const QString& question) {
  const QPointer<CCompactsPanel> panel = this;
  const int answer = GW::CMessageBox::question(this, hintTitle(), question);
  return panel && answer == QMessageBox::Yes;
}

void CCompactsPanel::refreshByHand() {
  const bool query = startQuery(true);
  if (query) {
    m_toolbar->updateItemLength();
    refreshTablesData(std::string());
  }
  if (m_radioGroup == nullptr) return;
  utils::logInfo(BUTTON_SITE,
                 query ? "[CCompactsPanel] query, current radioButton: {0}"
                       : "[CCompactsPanel] not query, current radioButton: {0}",
                 m_radioGroup->checkedId());
}

void CCompactsPanel::switchView(int id) {
  if (hasPrioritySettingAuth() && m_toolbar != nullptr) {
    for (GW::CSmallNoNormalButton* button : qAsConst(m_priorityButtons))
      m_toolbar->setItemVisible(button, id == ViewPriority);
    m_toolbar->updateItemLength();
  }
  const auto show = [](auto* table, bool isShown, auto query) {
    if (table == nullptr) return;
    table->setVisible(isShown);
    if (isShown) query(*table);
  };
  const auto queryCompacts = [](CCompactsBaseTable& table) { table.refresh(std::string(), true, false); };
  show(m_unclosedTable, id == ViewUnclosed || id == ViewPriority, queryCompacts);
  show(m_closedTable, id == ViewClosed, queryCompacts);
  show(m_staticsTable, id == ViewStatistics, [](CCompactsStaticsTable& table) { table.refresh(std::string(), true); });
  show(m_changeTable, id == ViewChanges, [](CCompactsChangeTable& table) { table.refresh(std::string()); });
}

void CCompactsPanel::refreshTablesData(const std::string& accountKey) {
  const auto isShown = [](const QWidget* table) { return table != nullptr && table->isVisible(); };
  if (isShown(m_unclosedTable)) m_unclosedTable->refresh(accountKey, true, true);
  if (isShown(m_closedTable)) m_closedTable->refresh(accountKey, true, true);
  if (isShown(m_changeTable)) m_changeTable->refresh(accountKey);
  if (isShown(m_staticsTable)) m_staticsTable->refresh(accountKey, true);
}

rdservice::EKVCompactType CCompactsPanel::getCurrentCompactType(rdservice::EOperationType operationType,
                                                                rdservice::ERepayType repayType) {
  for (const CCompactTypeRule& rule : COMPACT_TYPES)
    if (rule.operationType == operationType && (rule.repayType == ANY_REPAY || rule.repayType == repayType))
      return rule.compactType;
  return rdservice::CompactTypeAll;
}

void CCompactsPanel::slotTimeout() {
  utils::assertGui();
  if (m_unclosedTable != nullptr && m_unclosedTable->isVisible()) m_unclosedTable->updateTable();
  if (m_closedTable != nullptr && m_closedTable->isVisible()) m_closedTable->updateTable();
}

void CCompactsPanel::slotQueryData() {
  utils::assertGui();
  if (m_refreshButton != nullptr && !rdservice::ConfigCollector::instance()->calcCompactType())
    m_refreshButton->setEnabled(true);
  if (m_accountCombo != nullptr) m_accountCombo->setEnabled(true);
}

}  // namespace VN
