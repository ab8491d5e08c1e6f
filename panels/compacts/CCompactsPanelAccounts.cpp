// The panel's accounts: combo box, requests, subscriptions, log-in state.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "rdservice/TraderCenter.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <fmt/format.h>

namespace VN {

namespace {

/// An account as the combo box shows it: its display text, and the user's own name for it after two blanks.
QString accountText(const rdservice::CAccountInfo& account) {
  QString text = QString::fromStdString(rdservice::accountDisplayID(account));
  if (!account.alias.empty()) text += QStringLiteral("  (%1)").arg(QString::fromStdString(account.alias));
  return text;
}

bool isCreditAccount(const rdservice::CAccountInfo& account) {
  return isBrokerTypeMatchTradeType(account.brokerType, rdservice::TraderTypeStockCredit, true);
}

bool isReady(const std::string& accountKey) {
  return rdservice::isLoginStatusReady(CTradeClient::instance()->getLoginStatus(accountKey));
}

int findAccount(const GW::CComboBox& combo, const std::string& accountKey) {
  return combo.findData(QString::fromStdString(accountKey), Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

}  // namespace

void CCompactsPanel::addAccountItem(const rdservice::CAccountInfo& account) {
  m_accountCombo->addItem(accountText(account), QString::fromStdString(account.getKey()));
}

void CCompactsPanel::initAccountCombobox() {
  utils::assertGui();
  if (m_accountCombo == nullptr) return;
  const QString remembered = m_accountCombo->currentKey();
  m_accountCombo->beginRefill();
  m_accountCombo->clear();
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (account && isCreditAccount(*account) && isReady(account->getKey())) addAccountItem(*account);
  const int index = remembered.isEmpty() ? -1 : findAccount(*m_accountCombo, remembered.toStdString());
  if (index >= 0) m_accountCombo->setCurrentIndex(index);
  m_accountCombo->endRefill();
  followCurrentAccount(remembered);
}

void CCompactsPanel::refreshAccounts() { initAccountCombobox(); }

/// The combo box was empty and is not any more, or the other way round: the tables follow.
void CCompactsPanel::followCurrentAccount(const QString& remembered) {
  const QString current = m_accountCombo->currentKey();
  if (remembered.isEmpty() && !current.isEmpty()) setAccount(current.toStdString(), true, false);
  if (!remembered.isEmpty() && current.isEmpty()) clear();
}

void CCompactsPanel::requestAccount(const rdservice::CAccountInfo& account) {
  utils::assertGui();
  const std::string key = account.getKey();
  if (!isCreditAccount(account)) return;
  requestAccount(key);
  if (m_accountCombo == nullptr) return;
  const int index = findAccount(*m_accountCombo, key);
  if (!isReady(key)) {
    if (index >= 0) m_accountCombo->removeItem(index);
  } else if (index < 0) {
    addAccountItem(account);
  }
}

void CCompactsPanel::requestAccount(const std::string& accountKey) {
  constexpr utils::CLogSite SITE{"CCompactsPanel.cpp", "void VN::CCompactsPanel::requestAccount(const std::string&)"};
  const auto log = [&](const char* text) { utils::logInfo(SITE, text, panelId(), fmt::ptr(this), accountKey); };
  if (m_mode == ModeOrderPanel) {
    if (!needRequestAccount(accountKey)) {
      log("PT! [ORDER] request account : panel_id = {0}, this = {1}, account = {2}, NOT need request.");
      return;
    }
    log("PT! [ORDER] request account : panel_id = {0}, this = {1}, account = {2}, NEED request.");
    m_requestedAccounts.insert(accountKey);
    if (m_unclosedTable == nullptr) return;
  } else {
    m_requestedAccounts.insert(accountKey);
    if (m_unclosedTable == nullptr || m_accountCombo == nullptr) return;
    if (m_accountCombo->currentKey().toStdString() != accountKey) return;
    log("PT! [INDEPENDEN] request account : panel_id = {0}, this = {1}, account = {2}, NEED request.");
  }
  if (startQuery(false) && !m_unclosedTable->refresh(accountKey, true, false) && m_accountCombo != nullptr)
    m_accountCombo->setEnabled(true);
  doRequestAccount(accountKey);
}

void CCompactsPanel::doRequestAccount(const std::string& accountKey) {
  const rdservice::CAccountDataPtr account =
      rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(accountKey);
  if (!account) return;
  const auto subscribe = [&](int dataType, void (CCompactsPanel::*receive)(const rdservice::IDataPtr&),
                             QMap<QString, utils::CSubscriptionPtr>& subscriptions) {
    utils::CSubscriptionPtr handle = account->subscribe(
        dataType, std::string(),
        [this, receive](const std::vector<rdservice::IDataPtr>& changed) {
          for (const rdservice::IDataPtr& data : changed) {
            if (m_lifeline.isClosing()) return;  // the GUI thread waits for this call
            (this->*receive)(data);
          }
        },
        [this](const std::string& cleared, int type) { onClearAccountDatas(cleared, type); });
    if (handle) subscriptions[QString::fromStdString(accountKey)] = std::move(handle);
  };
  subscribe(rdservice::RecordStkUnClosedCompacts, &CCompactsPanel::onStkUnClosedCompacts, m_unclosedSubscriptions);
  subscribe(rdservice::RecordStkClosedCompacts, &CCompactsPanel::onStkClosedCompacts, m_closedSubscriptions);
}

void CCompactsPanel::onStkUnClosedCompacts(const rdservice::IDataPtr& data) {
  if (m_unclosedTable != nullptr) m_unclosedTable->onPushData(data);
}

void CCompactsPanel::onStkClosedCompacts(const rdservice::IDataPtr& data) {
  if (m_closedTable != nullptr) m_closedTable->onPushData(data);
}

CPushLoad CCompactsPanel::takePushLoad() {
  CPushLoad load;
  const auto tables = findChildren<CCompactsTable*>();
  for (CCompactsTable* table : tables) {
    const CPushLoad own = table->takePushLoad();
    load.mostWaiting += own.mostWaiting;
    load.folded += own.folded;
  }
  return load;
}

void CCompactsPanel::onClearAccountDatas(const std::string& accountKey, int dataType) {
  if (dataType == rdservice::RecordStkUnClosedCompacts && m_unclosedTable != nullptr)
    m_unclosedTable->clearTable(accountKey);
  if (dataType == rdservice::RecordStkClosedCompacts && m_closedTable != nullptr) m_closedTable->clearTable(accountKey);
}

void CCompactsPanel::setAccount(const std::string& accountKey, bool query, bool userChosen) {
  utils::assertGui();
  const bool allowed = query && startQuery(false);
  if (m_commandModeCombo) m_commandModeCombo->setAccount(accountKey);
  if (m_unclosedTable != nullptr) m_unclosedTable->setAccount(accountKey, allowed, userChosen);
  if (m_closedTable != nullptr) m_closedTable->setAccount(accountKey, allowed, userChosen);
  if (m_changeTable != nullptr) m_changeTable->setAccount(accountKey, false, userChosen);
  if (m_staticsTable != nullptr) m_staticsTable->setAccount(accountKey, allowed, userChosen);
}

void CCompactsPanel::slotLoginStatus(const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS,
                                     std::string) {
  utils::assertGui();
  if (!account || account->brokerType != rdservice::BrokerTypeCredit || m_accountCombo == nullptr) return;
  const QString remembered = m_accountCombo->currentKey();
  const std::string key = account->getKey();
  const int index = findAccount(*m_accountCombo, key);
  const bool ready = isReady(key);
  if (!ready && index >= 0) m_accountCombo->removeItem(index);
  if (ready && index < 0) addAccountItem(*account);
  followCurrentAccount(remembered);
}

}  // namespace VN
