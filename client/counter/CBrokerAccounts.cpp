#include "counter/CBrokerAccounts.h"

#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"

#include <QSqlError>
#include <QSqlQuery>

#include <boost/make_shared.hpp>

#include <utility>

namespace counter {

using rdservice::CAccountInfo;
using rdservice::CAccountInfoPtr;

bool CBrokerAccounts::reload(const CSqlConnection& connection, std::vector<CAccountInfoPtr>& accounts,
                             std::string& error) {
  const CSqlTable table(*recordKind(rdservice::RecordAccountInfo));
  auto query = connection.makeQuery();
  if (!query.exec(table.selectStatement() + QStringLiteral(" ORDER BY rowid"))) {
    error = sqlErrorText(query);
    return false;
  }
  std::vector<CAccountInfoPtr> read;
  while (query.next()) {
    read.push_back(boost::make_shared<CAccountInfo>());
    table.read(query, *read.back(), nullptr);
  }
  if (query.lastError().isValid()) {  // some accounts are not all accounts
    error = sqlErrorText(query);
    return false;
  }
  utils::CMutexLock lock(m_mutex);
  std::map<std::string, CEntry> known;
  known.swap(m_accounts);
  for (CAccountInfoPtr& info : read) {
    auto key = info->getKey();
    CEntry entry{info};
    if (const auto old = known.find(key); old != known.end()) {
      entry.loggedIn = old->second.loggedIn;
      if (sameFields(*old->second.info, *info)) entry.info = old->second.info;
    }
    accounts.push_back(entry.info);
    m_accounts.emplace(std::move(key), std::move(entry));
  }
  m_loaded = true;
  return true;
}

CAccountInfoPtr CBrokerAccounts::find(const CSqlConnection& connection, const std::string& accountKey,
                                      std::string& error) {
  const auto lookUp = [&](bool& loaded) {
    utils::CMutexLock lock(m_mutex);
    loaded = m_loaded;
    const auto found = m_accounts.find(accountKey);
    return found == m_accounts.end() ? nullptr : found->second.info;
  };
  bool loaded = false;
  auto info = lookUp(loaded);
  if (std::vector<CAccountInfoPtr> all; !loaded && reload(connection, all, error)) info = lookUp(loaded);
  return info;
}

bool CBrokerAccounts::isLoggedIn(const std::string& accountKey) const {
  utils::CMutexLock lock(m_mutex);
  const auto found = m_accounts.find(accountKey);
  return found != m_accounts.end() && found->second.loggedIn;
}

void CBrokerAccounts::setLoggedIn(const std::string& accountKey, bool loggedIn) {
  utils::CMutexLock lock(m_mutex);
  if (const auto found = m_accounts.find(accountKey); found != m_accounts.end()) found->second.loggedIn = loggedIn;
}

}  // namespace counter
