#pragma once

#include "counter/CSqlAnswer.h"

namespace rdservice {
class CSetCreditRepayPriorityReq;
}

namespace counter {

class CBrokerAccounts;
class CSqlConnection;

/// Sets and clears repay priorities. Only the counter's writer thread uses it.
class CPriorityDesk {
 public:
  explicit CPriorityDesk(CBrokerAccounts& accounts) : m_accounts(accounts) {}

  /// Works off a request in one transaction. Each entry is done or refused for itself. A priority that another compact
  /// of the account has after the whole request is refused; of two entries that give the same one, the later. An error
  /// means that nothing changed.
  CWriteAnswer set(const CSqlConnection& connection, const rdservice::CSetCreditRepayPriorityReq& request);

 private:
  CBrokerAccounts& m_accounts;
};

}  // namespace counter
