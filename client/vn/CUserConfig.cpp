#include "vn/CUserConfig.h"

#include "utils/CInstance.h"
#include "utils/CMutex.h"
#include "utils/threads.h"
#include "vn/CBasketBook.h"
#include "vn/CChoiceBook.h"
#include "vn/user_settings.h"

namespace VN {

struct CUserConfig::Private {
  Private(const CUserSettings& s, const std::string& basketFile, const std::string& choicesFile)
      : settings(s),
        baskets(QString::fromStdString(basketFile)),
        choices(QString::fromStdString(choicesFile)),
        startMessages(baskets.messages() + choices.messages()) {}

  const CUserSettings settings;
  mutable utils::CMutex mutex;
  QList<CAccountPtr> accounts TS_GUARDED_BY(mutex);
  CBasketBook baskets;  ///< GUI thread
  CChoiceBook choices;  ///< GUI thread
  const QStringList startMessages;
  std::unique_ptr<utils::CInstance<CUserConfig>> registration;
};

struct CConfig::Private {
  CUserSettings settings;
  std::unique_ptr<utils::CInstance<CConfig>> registration;
};

CUserConfig::CUserConfig(std::unique_ptr<Private> d) : m_d(std::move(d)) {
  m_d->registration = std::make_unique<utils::CInstance<CUserConfig>>(this);
}

CUserConfig::~CUserConfig() = default;

QList<CAccountPtr> CUserConfig::getAccountDatas() const {
  const utils::CMutexLock lock(m_d->mutex);
  return m_d->accounts;
}

CAccountPtr CUserConfig::getAccountData(const QString& accountKey) const {
  const std::string key = accountKey.toStdString();
  const QList<CAccountPtr> accounts = getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (account && account->getKey() == key) return account;
  return nullptr;
}

void CUserConfig::setAccountDatas(const QList<CAccountPtr>& accounts) {
  const utils::CMutexLock lock(m_d->mutex);
  m_d->accounts = accounts;
}

int CUserConfig::variantCode() const { return m_d->settings.variantCode; }
int CUserConfig::counterType() const { return m_d->settings.counterType; }

CMsgSetting CUserConfig::getMsgSetting(int kind) const {
  switch (kind) {
    case 0: return m_d->settings.priorityMessage;
    case 1: return m_d->settings.renewalMessage;
    default: return {};
  }
}

bool CUserConfig::isCompactMode() const {
  utils::assertGui();
  return m_d->choices.isCompactMode();
}

void CUserConfig::setCompactMode(bool compact) {
  utils::assertGui();
  m_d->choices.setCompactMode(compact);
}

bool CUserConfig::isOrderConfirmed(const std::string& accountKey) const {
  utils::assertGui();
  return m_d->choices.isOrderConfirmed(accountKey);
}

void CUserConfig::setOrderConfirmed(const std::string& accountKey, bool confirmed) {
  utils::assertGui();
  m_d->choices.setOrderConfirmed(accountKey, confirmed);
}

QString CUserConfig::fileFolder() const {
  utils::assertGui();
  return m_d->choices.fileFolder();
}

void CUserConfig::setFileFolder(const QString& folder) {
  utils::assertGui();
  m_d->choices.setFileFolder(folder);
}

utils::CSubscriptionPtr CUserConfig::subscribeChoices(std::function<void()> callback) {
  return m_d->choices.subscribe(std::move(callback));
}

bool CUserConfig::getTableSetting(CTableConfigInfo& info) const {
  utils::assertGui();
  return m_d->choices.getTableSetting(info);
}

void CUserConfig::saveTableSetting(const CTableConfigInfo& info) {
  utils::assertGui();
  m_d->choices.saveTableSetting(info);
}

CUserConfig::CBasketPtr CUserConfig::getBasketSettingNoCreate(const QString& name) {
  utils::assertGui();
  return m_d->baskets.get(name);
}

QList<CUserConfig::CBasketPtr> CUserConfig::getBasketSettings() {
  utils::assertGui();
  const auto& named = m_d->baskets.named();
  return QList<CBasketPtr>(named.begin(), named.end());
}

QString CUserConfig::saveBaskets() {
  utils::assertGui();
  return m_d->baskets.save();
}

std::optional<QString> CUserConfig::removeBasketSetting(const QString& name) {
  utils::assertGui();
  return m_d->baskets.remove(name);
}

std::optional<QString> CUserConfig::renameBasketSetting(const QString& from, const QString& to) {
  utils::assertGui();
  return m_d->baskets.rename(from, to);
}

utils::CSubscriptionPtr CUserConfig::subscribeBaskets(std::function<void()> callback) {
  return m_d->baskets.subscribe(std::move(callback));
}

QStringList CUserConfig::startMessages() const { return m_d->startMessages; }

CConfig::CConfig(std::unique_ptr<Private> d) : m_d(std::move(d)) {
  m_d->registration = std::make_unique<utils::CInstance<CConfig>>(this);
}

CConfig::~CConfig() = default;

int CConfig::getQueryCompacInterval() const { return m_d->settings.queryCompactInterval; }

CUserConfig* CUserManager::getUserConfig() { return utils::CInstance<CUserConfig>::get(); }
CUserConfig* getUserConfig() { return CUserManager::getUserConfig(); }
CConfig* getConfig() { return utils::CInstance<CConfig>::get(); }

std::unique_ptr<CUserConfig> makeUserConfig(const CUserSettings& settings, const std::string& basketFile,
                                            const std::string& choicesFile) {
  return std::make_unique<CUserConfig>(std::make_unique<CUserConfig::Private>(settings, basketFile, choicesFile));
}

std::unique_ptr<CConfig> makeConfig(const CUserSettings& settings) {
  auto d = std::make_unique<CConfig::Private>();
  d->settings = settings;
  return std::make_unique<CConfig>(std::move(d));
}

}  // namespace VN
