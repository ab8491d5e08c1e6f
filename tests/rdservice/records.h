#pragma once

#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"

#include <string>
#include <vector>

// Records that the cases share.
namespace test {

/// Account "3.10010001", a credit account.
rdservice::CAccountInfoPtr creditAccount();

/// An unclosed compact of that account in SH 600000, opened on 2024-02-29, told apart by its number.
rdservice::CStkUnClosedCompactsPtr openCompact(const std::string& compactNo, std::int64_t volume = 100);
rdservice::CStkClosedCompactsPtr closedCompact(const std::string& compactNo);

std::string openKey(const std::string& compactNo);

/// Compact numbers of the records, in order, joined by blanks.
std::string numbersOf(const std::vector<rdservice::IDataPtr>& records);

}  // namespace test
