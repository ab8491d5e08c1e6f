#include "CPanelHost.h"

#include "gw/controls.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"
#include "vn/ITradeDockableWidget.h"

#include <algorithm>

CPanelHost::CPanelHost(VN::ITradeDockableWidget* panel) : QObject(panel), m_panel(panel) {
  VN::CTradeClient* client = VN::CTradeClient::instance();
  connect(client, &VN::CTradeClient::sigAccountsChanged, this, [this] { m_panel->refreshAccounts(); });
  connect(client, &VN::CTradeClient::sigLoginStatus, this,
          [this](const rdservice::CAccountInfoPtr& account) { onLoginStatus(account); });
  // Queued: the panel first handles the choice itself.
  const auto combos = panel->findChildren<GW::CComboBox*>();
  for (GW::CComboBox* combo : combos)
    connect(
        combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] { requestShownAccount(); },
        Qt::QueuedConnection);
  requestShownAccount();
}

CPanelHost::~CPanelHost() = default;

void CPanelHost::onLoginStatus(const rdservice::CAccountInfoPtr& account) {
  if (!account) return;
  const QString key = QString::fromStdString(account->getKey());
  if (key == m_requested) m_requested.clear();
  m_panel->requestAccount(*account);
  // The panel has asked for it when it shows it.
  const auto combos = m_panel->findChildren<GW::CComboBox*>();
  if (std::any_of(combos.begin(), combos.end(), [&](const auto* combo) { return combo->currentKey() == key; }))
    m_requested = key;
}

void CPanelHost::requestShownAccount() {
  const auto combos = m_panel->findChildren<GW::CComboBox*>();
  for (const GW::CComboBox* combo : combos) {
    const QString key = combo->currentKey();
    const VN::CAccountPtr account = VN::getUserConfig()->getAccountData(key);
    if (!account || key == m_requested) continue;
    m_requested = key;
    m_panel->requestAccount(*account);
  }
}
