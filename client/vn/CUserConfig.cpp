#include "vn/CUserConfig.h"

#include "utils/CInstance.h"
#include "utils/CMutex.h"
#include "vn/user_settings.h"

namespace VN {

struct CUserConfig::Private {
  explicit Private(const CUserSettings& s) : settings(s) {}

  const CUserSettings settings;
  mutable utils::CMutex mutex;
  QList<CAccountPtr> accounts TS_GUARDED_BY(mutex);
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

CConfig::CConfig(std::unique_ptr<Private> d) : m_d(std::move(d)) {
  m_d->registration = std::make_unique<utils::CInstance<CConfig>>(this);
}

CConfig::~CConfig() = default;

int CConfig::getQueryCompacInterval() const { return m_d->settings.queryCompactInterval; }

CUserConfig* CUserManager::getUserConfig() { return utils::CInstance<CUserConfig>::get(); }
CUserConfig* getUserConfig() { return CUserManager::getUserConfig(); }
CConfig* getConfig() { return utils::CInstance<CConfig>::get(); }

std::unique_ptr<CUserConfig> makeUserConfig(const CUserSettings& settings) {
  return std::make_unique<CUserConfig>(std::make_unique<CUserConfig::Private>(settings));
}

std::unique_ptr<CConfig> makeConfig(const CUserSettings& settings) {
  auto d = std::make_unique<CConfig::Private>();
  d->settings = settings;
  return std::make_unique<CConfig>(std::move(d));
}

}  // namespace VN
