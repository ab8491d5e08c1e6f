#include "vn/CSingleAccountCommandModeComboBox.h"

#include "vn/CUserConfig.h"

namespace VN {

namespace {

const QString CONFIRMED_KEY = QStringLiteral("confirm");
const QString DIRECT_KEY = QStringLiteral("direct");

}  // namespace

CSingleAccountCommandModeComboBox::CSingleAccountCommandModeComboBox(int id, QWidget* parent) : CComboBox(id, parent) {
  beginRefill();
  addItem(QStringLiteral("下单前确认"), CONFIRMED_KEY);
  addItem(QStringLiteral("直接下单"), DIRECT_KEY);
  setAccessibleName(QStringLiteral("下单方式"));
  endRefill();
  showMode();
  connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
    if (!m_account.empty() && getUserConfig() != nullptr) getUserConfig()->setOrderConfirmed(m_account, isConfirmed());
  });
  if (CUserConfig* const config = getUserConfig()) m_subscription = config->subscribeChoices([this] { showMode(); });
}

CSingleAccountCommandModeComboBox::~CSingleAccountCommandModeComboBox() = default;

void CSingleAccountCommandModeComboBox::setAccount(const std::string& accountKey) {
  m_account = accountKey;
  showMode();
}

const std::string& CSingleAccountCommandModeComboBox::account() const { return m_account; }

bool CSingleAccountCommandModeComboBox::isConfirmed() const { return currentKey() != DIRECT_KEY; }

void CSingleAccountCommandModeComboBox::showMode() {
  setEnabled(!m_account.empty());
  const CUserConfig* const config = getUserConfig();
  const bool isDirect = !m_account.empty() && config != nullptr && !config->isOrderConfirmed(m_account);
  setCurrentIndex(findData(isDirect ? DIRECT_KEY : CONFIRMED_KEY));
}

}  // namespace VN
