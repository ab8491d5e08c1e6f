#pragma once

#include "rdservice/CAccountInfo.h"
#include "utils/RDError.h"

#include <string>

namespace counter {

class CBrokerAccounts;
class CSqlConnection;

/// The account when it may be queried and may place orders; otherwise null, and `error`, a text for users, says why
/// not. Errors of the database are logged.
rdservice::CAccountInfoPtr readyAccount(CBrokerAccounts& accounts, const CSqlConnection& connection,
                                        const std::string& accountKey, utils::RDError& error);

/// The error of a request that a failing database kept from being answered; logs it.
utils::RDError sqlFailure(const std::string& error);
/// The error of every request when the database cannot be used.
utils::RDError unusableDatabase(const CSqlConnection& connection);
utils::RDError unknownAccount(const std::string& accountKey);

}  // namespace counter
