// The order panel's accounts: which there are, which one is chosen, which the compacts panel serves.

#include "orderpanel/COrderForm.h"
#include "orderpanel/COrderPanel.h"

#include "compacts/CCompactsPanel.h"
#include "gw/controls.h"
#include "rdservice/rdservice_enums.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <algorithm>

namespace {

bool isCredit(const rdservice::CAccountInfo& account) {
  return VN::isBrokerTypeMatchTradeType(account.brokerType, rdservice::TraderTypeStockCredit, true);
}

rdservice::EBROKER_LOGIN_STATUS statusOf(const std::string& accountKey) {
  return VN::CTradeClient::instance()->getLoginStatus(accountKey);
}

/// An account as its box shows it: its display text, and the user's own name for it.
QString accountText(const rdservice::CAccountInfo& account) {
  QString text = QString::fromStdString(rdservice::accountDisplayID(account));
  if (!account.alias.empty()) text += QStringLiteral("  (%1)").arg(QString::fromStdString(account.alias));
  return text;
}

/// Whether the account is about to log in by itself.
bool isAwaited(const QString& accountKey) {
  const VN::CAccountPtr account = VN::getUserConfig()->getAccountData(accountKey);
  if (!account) return false;
  const auto status = statusOf(accountKey.toStdString());
  return status == rdservice::LoginStatusLoggingIn ||
         (status == rdservice::LoginStatusLoggedOut && account->autoLogin != 0);
}

}  // namespace

std::vector<VN::CAccountPtr> COrderPanel::readyAccounts() const {
  std::vector<VN::CAccountPtr> ready;
  const QList<VN::CAccountPtr> all = VN::getUserConfig()->getAccountDatas();
  std::copy_if(all.begin(), all.end(), std::back_inserter(ready), [](const VN::CAccountPtr& account) {
    return account && isCredit(*account) && rdservice::isLoginStatusReady(statusOf(account->getKey()));
  });
  return ready;
}

std::string COrderPanel::chosenAccount() const { return m_form->accounts().currentKey().toStdString(); }

bool COrderPanel::needsAccount(const std::string& accountKey) const {
  if (!VN::getUserConfig()->isCompactMode()) return !accountKey.empty() && accountKey == m_shownAccount;
  const VN::CAccountPtr account = VN::getUserConfig()->getAccountData(QString::fromStdString(accountKey));
  return account && isCredit(*account);
}

/// Until the account that was chosen in the last run has logged in, none is chosen: one that logs in before it would
/// leave its pushes in the table.
void COrderPanel::refreshAccounts() {
  GW::CComboBox& combo = m_form->accounts();
  const QString before = combo.currentKey();
  m_isReady = false;
  combo.beginRefill();
  combo.clear();
  for (const VN::CAccountPtr& account : readyAccounts())
    combo.addItem(accountText(*account), QString::fromStdString(account->getKey()));
  int index = m_keptAccount.isEmpty() ? -1 : combo.findData(m_keptAccount);
  const bool waits = index < 0 && isAwaited(m_keptAccount);
  if (!waits && combo.count() > 0) m_keptAccount.clear();
  if (!waits && index < 0) index = std::max(combo.findData(before), combo.count() > 0 ? 0 : -1);
  combo.setCurrentIndex(index);
  combo.endRefill();
  m_isReady = true;
  chooseAccount();
}

void COrderPanel::chooseAccount() {
  const std::string account = chosenAccount();
  if (account != m_shownAccount) {
    m_shownAccount = account;
    m_compacts->clearSelect();
    m_form->setCompactNumber(QString());
    m_compacts->setAccount(account, !account.empty(), !account.empty());
    if (account.empty()) m_compacts->clear();
  }
  requestAccounts();
}

void COrderPanel::requestAccounts() {
  std::set<std::string> served;
  const std::vector<VN::CAccountPtr> ready = readyAccounts();
  for (const VN::CAccountPtr& account : ready) {
    const std::string key = account->getKey();
    const bool isServed = m_served.count(key) > 0;
    if (isServed || needsAccount(key)) served.insert(key);
    if (!isServed && needsAccount(key)) m_compacts->requestAccount(*account);
  }
  m_served = std::move(served);
  m_form->setAccountCount(VN::getUserConfig()->isCompactMode() ? static_cast<int>(ready.size()) : 1);
}

void COrderPanel::updateCompactMode(bool compact) {
  m_compacts->updateCompactIndex(compact);
  requestAccounts();
}
