#pragma once

#include "rdservice/CStkOrder.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <string>
#include <vector>

namespace counter {

class CSqlConnection;

// What a filled order does to the liabilities of its account, inside the caller's transaction. An `error` leaves the
// transaction to be rolled back. `source`: EKVCompactBrushSource; `date`: Julian day number.

/// Shares that the account owes of the order's security.
std::int64_t owedShares(const CSqlConnection& connection, const rdservice::CStkOrder& order, char source,
                        std::string& error);

/// Yuan that the account owes in financing compacts: principal, interest, penalties, fees and compensation.
double owedMoney(const CSqlConnection& connection, const rdservice::CStkOrder& order, char source, std::string& error);

/// Returns the order's volume of its security, no more than is owed: to the compacts opened first first, the owed
/// principal falling with the shares. Interest and fees stay owed. Writes the compacts and their change details, and
/// adds to `changed` the compacts as they are now. One that owes nothing any more moves to the closed ones, and then
/// both stand there.
void returnShares(const CSqlConnection& connection, const rdservice::CStkOrder& order, char source, std::int32_t date,
                  std::vector<rdservice::IDataPtr>& changed, std::string& error);

/// Likewise repays `amount` yuan of financing compacts, those with a repay priority first, in its order, then those
/// opened first; of each the principal first. What is beyond all that is owed is left over.
void repayMoney(const CSqlConnection& connection, const rdservice::CStkOrder& order, char source, double amount,
                std::int32_t date, std::vector<rdservice::IDataPtr>& changed, std::string& error);

}  // namespace counter
