#pragma once

#include "rdservice/IData.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace counter {

class CBrokerAccounts;
class CSqlConnection;

/// Changes records on the broker's side. Only the counter's writer thread uses it. Errors are logged and leave the
/// database as it was.
class CCompactWriter {
 public:
  explicit CCompactWriter(CBrokerAccounts& accounts);

  /// Inserts or replaces the records in one transaction. Returns copies of them with the counter's shared accounts;
  /// nothing when one of them cannot be written.
  std::vector<rdservice::IDataPtr> write(const CSqlConnection& connection,
                                         const std::vector<rdservice::IDataPtr>& records);

  /// Moves an unclosed compact of the account to the closed ones, in one transaction. Returns the unclosed one as it
  /// ended, owing nothing, and the closed one; nothing when there is no such compact. `closeDate`: Julian day number.
  std::vector<rdservice::IDataPtr> close(const CSqlConnection& connection, const std::string& accountKey,
                                         const std::string& compactKey, std::int32_t closeDate);

  /// The same for the account's first compacts in the order of their positions: `count`, or all when it has fewer. All
  /// of them or none.
  std::vector<rdservice::IDataPtr> closeFirst(const CSqlConnection& connection, const std::string& accountKey,
                                              int count, std::int32_t closeDate);

  /// Lets interest grow and a part of the principal be repaid for `count` unclosed compacts of the account, or for all
  /// when it has fewer. The same seed on the same records makes the same changes.
  std::vector<rdservice::IDataPtr> changeRandom(const CSqlConnection& connection, const std::string& accountKey,
                                                int count, unsigned seed);

 private:
  /// Gives the keys of the compacts to close, inside the transaction.
  using CChoice = std::function<std::vector<std::string>(std::string& error)>;
  std::vector<rdservice::IDataPtr> closeChosen(const CSqlConnection& connection, const std::string& accountKey,
                                               std::int32_t closeDate, const CChoice& choose);
  /// Row numbers of the account's unclosed compacts, read once; a row that is gone since is skipped later.
  const std::vector<std::int64_t>& rowIds(const CSqlConnection& connection, const std::string& accountKey);

  CBrokerAccounts& m_accounts;
  std::map<std::string, std::vector<std::int64_t>> m_rowIds;  ///< by account key
};

}  // namespace counter
