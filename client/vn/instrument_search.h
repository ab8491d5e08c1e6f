#pragma once

#include "rdservice/CInstrumentInfo.h"

#include <string>
#include <string_view>
#include <vector>

namespace VN {

using CInstruments = std::vector<rdservice::CInstrumentInfoPtr>;

/// Those of exactly that code, in order of their exchange's id.
CInstruments instrumentsOfCode(const CInstruments& all, const std::string& code);

/// Those that a user may mean by `typed` (UTF-8), see `CExchangeClient::findInstruments`.
CInstruments searchInstruments(const CInstruments& all, std::string_view typed, std::size_t most);

}  // namespace VN
