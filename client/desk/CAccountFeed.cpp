#include "CAccountFeed.h"

#include "gw/CTableBatch.h"
#include "rdservice/CStructDes.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "vn/CHpfDataTable.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

namespace {

constexpr int REFRESH_PERIOD_MS = 100;

bool isOf(const rdservice::IData& record, const std::string& accountKey) {
  for (const rdservice::CFieldDes& field : record.getStructDes()) {
    if (field.type != rdservice::EFieldType::Account) continue;
    const auto& account = field.get<rdservice::CAccountInfoPtr>(record);
    return account != nullptr && account->getKey() == accountKey;
  }
  return false;
}

}  // namespace

CAccountFeed::CAccountFeed(VN::CHpfDataTable& table, CWrite write) : m_table(table), m_write(std::move(write)) {
  VN::CTradeClient* client = VN::CTradeClient::instance();
  connect(client, &VN::CTradeClient::sigAccountsChanged, this, [this] { followLogins(); });
  connect(client, &VN::CTradeClient::sigLoginStatus, this, [this] { followLogins(); });
  connect(&m_refresh, &QTimer::timeout, this, [this] {
    if (m_table.isVisible()) m_table.updateTable();
  });
  m_refresh.start(REFRESH_PERIOD_MS);
  followLogins();
}

CAccountFeed::~CAccountFeed() { m_accounts.clear(); }

/// What was signalled may be out of date by the time that it arrives here: the states are asked for.
void CAccountFeed::followLogins() {
  const QList<VN::CAccountPtr> accounts = VN::getUserConfig()->getAccountDatas();
  for (const VN::CAccountPtr& account : accounts) {
    if (!account) continue;
    const std::string key = account->getKey();
    const bool isIn = rdservice::isLoginStatusReady(VN::CTradeClient::instance()->getLoginStatus(key));
    const bool isFollowed = m_accounts.count(key) > 0;
    if (isIn && !isFollowed) begin(key);
    if (!isIn && isFollowed) end(key);
  }
}

void CAccountFeed::begin(const std::string& accountKey) {
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(accountKey);
  if (!store) return;
  // First what changes, then what is there: nothing falls between, and versions tell which is newer.
  m_accounts[accountKey] = store->subscribe(m_table.recordType(), std::string(), m_write);
  m_write(store->getData(m_table.recordType()));
}

void CAccountFeed::end(const std::string& accountKey) {
  m_accounts.erase(accountKey);
  GW::CTableBatch batch(m_table);
  batch.dropAbsent([accountKey](const rdservice::IData& row) { return isOf(row, accountKey); });
  static_cast<void>(batch.commit());  // of a push: never refused
}
