#pragma once

#include "counter/CRenewalRules.h"
#include "counter/CSqlAnswer.h"

#include <cstdint>
#include <map>
#include <string>

namespace rdservice {
class CCreditCompactRenewalApply;
class CStkUnClosedCompacts;
}  // namespace rdservice

namespace counter {

class CBrokerAccounts;
class CSqlConnection;

/// Extends compacts by the rules of the account's counter type. Only the counter's writer thread uses it.
class CRenewalDesk {
 public:
  /// A counter type without rules of its own has the default ones.
  CRenewalDesk(CBrokerAccounts& accounts, std::map<int, CRenewalRules> rules)
      : m_accounts(accounts), m_rules(std::move(rules)) {}

  /// Moves the expiry date of the compact, and of its appointment when it has one, or refuses in the way that the rules
  /// say.
  CWriteAnswer apply(const CSqlConnection& connection, const rdservice::CCreditCompactRenewalApply& application);

 private:
  CBrokerAccounts& m_accounts;
  const std::map<int, CRenewalRules> m_rules;
};

/// Why the compact cannot be extended by so many days on the day `today` (Julian day number): a text for users, empty
/// when it can.
std::string renewalRefusal(const CRenewalRules& rules, const rdservice::CStkUnClosedCompacts& compact,
                           std::int64_t days, std::int32_t today);

}  // namespace counter
