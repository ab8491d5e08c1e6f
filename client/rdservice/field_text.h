#pragma once

#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace rdservice {

// Field values as machines write and read them: SQL columns and book files.
//
// Numbers are decimal with '.', without grouping; dates are yyyy-MM-dd, empty for none; codes are their single
// character, or their decimal number when the member is an integer; an account is its account key. What `machineText`
// writes of a valid record, `parseField` reads back as the same value.

/// What the reader of a text must know besides the field.
struct CParseContext {
  std::int32_t today = 0;  ///< Julian day number of "today", "today-30", "today+5"; 0 refuses relative dates
};

/// Reads `text` into the field of an unpublished record. False leaves the record as it is and sets `error` to the
/// column, what was expected and what stood there. Dates are also read as yyyyMMdd. Columns that become parts of keys
/// or of request lists refuse texts that would break those. An account cannot be read here: the caller knows the
/// accounts. Any thread.
bool parseField(const CFieldDes& field, std::string_view text, IData& record, std::string& error,
                const CParseContext& context = {});

std::string machineText(const CFieldDes& field, const IData& record);

}  // namespace rdservice
