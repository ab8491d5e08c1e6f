// The panel's query cycle: when tables may query, the manual refresh, the view switch.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CCountDownButton.h"
#include "vn/CUserConfig.h"

namespace VN {

namespace {

constexpr utils::CLogSite BUTTON_SITE{"CCompactsPanel.cpp", "void VN::CCompactsPanel::handleButtonClicked(int)"};

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
  if (id >= ViewUnclosed && id <= ViewStatistics) {
    switchView(id);
  } else if (id == IdRefreshButton) {
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
}

void CCompactsPanel::switchView(int id) {
  if (m_toolbar != nullptr) m_toolbar->updateItemLength();
  const auto show = [](auto* table, bool isShown, auto query) {
    if (table == nullptr) return;
    table->setVisible(isShown);
    if (isShown) query(*table);
  };
  const auto queryCompacts = [](CCompactsBaseTable& table) { table.refresh(std::string(), true, false); };
  show(m_unclosedTable, id == ViewUnclosed, queryCompacts);
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
