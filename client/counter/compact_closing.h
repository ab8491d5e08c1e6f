#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

/// Keys of the account's unclosed compacts that stand first in the order of their positions, at most `count`.
std::vector<std::string> firstCompacts(const CSqlConnection& connection, const std::string& accountKey, int count,
                                       std::string& error);

/// Moves the unclosed compact of the key from its table to that of the closed ones, inside the caller's transaction,
/// where it comes behind those that the account has. Returns the unclosed one as it ended, owing nothing, and the
/// closed one; their account is `account`. An `error` leaves the transaction to be rolled back. `closeDate`: Julian day
/// number.
std::vector<rdservice::IDataPtr> moveToClosed(const CSqlConnection& connection,
                                              const rdservice::CAccountInfoPtr& account, const std::string& compactKey,
                                              std::int32_t closeDate, std::string& error);

}  // namespace counter
