#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CMutex.h"

#include <map>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

/// The counter's accounts: one shared record each, and whether it is logged in. Read from the database at the first
/// need. Any thread.
class CBrokerAccounts {
 public:
  /// Reads the accounts again, in the book's order. An account whose values did not change keeps its shared record and
  /// stays logged in. False sets `error`.
  bool reload(const CSqlConnection& connection, std::vector<rdservice::CAccountInfoPtr>& accounts, std::string& error);

  /// Null with an empty `error` when the counter has no such account.
  rdservice::CAccountInfoPtr find(const CSqlConnection& connection, const std::string& accountKey, std::string& error);

  bool isLoggedIn(const std::string& accountKey) const;
  void setLoggedIn(const std::string& accountKey, bool loggedIn);

 private:
  struct CEntry {
    rdservice::CAccountInfoPtr info;
    bool loggedIn = false;
  };

  mutable utils::CMutex m_mutex;
  std::map<std::string, CEntry> m_accounts TS_GUARDED_BY(m_mutex);
  bool m_loaded TS_GUARDED_BY(m_mutex) = false;
};

}  // namespace counter
