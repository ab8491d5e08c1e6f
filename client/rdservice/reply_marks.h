#pragma once

#include "rdservice/CAccountData.h"

#include <cstdint>
#include <vector>

namespace rdservice {

// Replies and pushes overtake each other: a reply tells how things stood when the counter worked on the request, and
// what was pushed since then is newer, whichever is stored first. So a mark is taken from the account's store when a
// request is sent and noted with the reply's records. Storing such a record leaves alone what was pushed or modified
// after the mark, or came with the reply to a later request. Any thread.

/// The account's next mark; later than everything stored so far.
std::uint64_t takeMark(CAccountData& account);

/// Notes the mark with the records of a reply that nobody else has seen.
void noteMark(const std::vector<IDataPtr>& records, std::uint64_t mark);

/// `CAccountData::updateCompacts` for a reply: records that are newer than the mark stay, also when the reply does not
/// know them.
void replaceAsOf(CAccountData& account, int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark);

/// Announces that the records of a reply, which are going to be stored, are all unclosed compacts of the account. Once
/// they are stored and there are no others, the account's statistics are made of its compacts, see
/// CAccountDataStatistics.cpp.
void noteWholeReply(CAccountData& account, const std::vector<IDataPtr>& records, std::uint64_t mark);

}  // namespace rdservice
