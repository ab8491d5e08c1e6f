// What the panel offers the order panel around it.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "gw/CComboPushButton.h"
#include "gw/containers.h"
#include "gw/widget_events.h"
#include "utils/threads.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/CUserConfig.h"

#include <QEvent>

namespace VN {

void CCompactsPanel::setOperationType(rdservice::EOperationType operationType, rdservice::ERepayType repayType) {
  utils::assertGui();
  m_operationType = operationType;
  if (m_unclosedTable != nullptr)
    m_unclosedTable->setCompactType(getCurrentCompactType(operationType, repayType), repayType);
  if (m_compactModeButton != nullptr)
    m_toolbar->setItemVisible(m_compactModeButton, operationType == rdservice::OperationBuyToReturn ||
                                                       operationType == rdservice::OperationSellToRepay);
}

void CCompactsPanel::setCompactMode(bool compact) {
  utils::assertGui();
  getUserConfig()->setCompactMode(compact);
  deliverEvent(GW::EventCompactMode, 0, 0, QString(), nullptr);
}

void CCompactsPanel::updateCompactIndex(bool compact) {
  utils::assertGui();
  if (m_compactModeButton != nullptr)
    m_compactModeButton->setCurrentItem(compact ? CompactModeAccounts : CompactModeLiabilities);
}

bool CCompactsPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_compactModeButton && m_compactModeButton != nullptr &&
      event->type() == QEvent::MouseButtonDblClick) {
    setCompactMode(true);
    return true;
  }
  return QObject::eventFilter(watched, event);
}

void CCompactsPanel::setCompactBrushSourceType(rdservice::EKVCompactBrushSource brushSource) {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->setBrushSourceFilter(brushSource);
}

void CCompactsPanel::setCommandModeComboBox(CSingleAccountCommandModeComboBox* combo) {
  utils::assertGui();
  m_commandModeCombo = combo;
  if (combo != nullptr && m_toolbar != nullptr) m_toolbar->addWidget(combo);
}

void CCompactsPanel::setSelectColumnVisible(bool visible) {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->setSelectColumnVisible(visible);
}

void CCompactsPanel::setSelectCompact(const std::string& key) {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->selectCompact(key);
}

rdservice::CStkUnClosedCompactsPtr CCompactsPanel::getSelectCompact() const {
  utils::assertGui();
  if (m_unclosedTable == nullptr) return nullptr;
  return boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(m_unclosedTable->currentCheckedData());
}

void CCompactsPanel::clearSelect() {
  utils::assertGui();
  if (m_unclosedTable != nullptr) m_unclosedTable->clearRadioSelection();
}

double CCompactsPanel::getEquityCompensation() const {
  utils::assertGui();
  double sum = 0;
  if (m_unclosedTable == nullptr) return sum;
  const std::vector<rdservice::IDataPtr> held = m_unclosedTable->getAllDatas();
  for (const rdservice::IDataPtr& record : held)
    if (const auto* compact = dynamic_cast<const rdservice::CStkUnClosedCompacts*>(record.get()))
      sum += compact->equityCompensation;
  return sum;
}

void CCompactsPanel::slotTableLayoutClicked(bool, int area, QString) {
  utils::assertGui();
  deliverEvent(GW::EventPanelPosition, 0, area, QString(), nullptr);
}

}  // namespace VN
