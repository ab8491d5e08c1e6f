#include "vn/instrument_search.h"

#include <algorithm>
#include <iterator>

namespace VN {

namespace {

constexpr std::size_t NOWHERE = std::string_view::npos;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Small letters, and the wide Latin letters and digits that names of securities have as plain ones.
void fold(std::string_view text, std::string& folded) {
  folded.resize(text.size());
  char* end = folded.data();
  for (std::size_t i = 0; i < text.size(); ++i) {
    // U+FF01 to U+FF5E: the three bytes EF BC 81 to EF BD 9E.
    if (text[i] == '\xEF' && i + 2 < text.size() && (text[i + 1] == '\xBC' || text[i + 1] == '\xBD')) {
      const int low = static_cast<unsigned char>(text[i + 2]);
      const int plain = low - 0x80 + (text[i + 1] == '\xBC' ? 0x20 : 0x60);
      if (plain > 0x20 && plain < 0x7F) {
        *end++ = lower(static_cast<char>(plain));
        i += 2;
        continue;
      }
    }
    *end++ = lower(text[i]);
  }
  folded.resize(static_cast<std::size_t>(end - folded.data()));
}

bool isBefore(const rdservice::CInstrumentInfo* a, const rdservice::CInstrumentInfo* b) {
  const int order = a->code.str().compare(b->code.str());
  return order != 0 ? order < 0 : a->exchangeId < b->exchangeId;
}

/// Whether `wanted` stands at the text's beginning, elsewhere in it, or nowhere.
std::size_t placeIn(const std::string& text, std::string_view wanted, std::string& folded) {
  if (text.size() < wanted.size()) return NOWHERE;
  fold(text, folded);
  return folded.find(wanted);
}

}  // namespace

CInstruments instrumentsOfCode(const CInstruments& all, const std::string& code) {
  CInstruments found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&code](const auto& instrument) { return instrument->code.str() == code; });
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return isBefore(a.get(), b.get()); });
  return found;
}

CInstruments searchInstruments(const CInstruments& all, std::string_view typed, std::size_t most) {
  std::string wanted, folded;
  fold(typed, wanted);
  if (wanted.empty()) return {};
  // Pointers: counting the references of thousands would take longer than the search.
  std::vector<const rdservice::CInstrumentInfoPtr*> begin, contain;
  for (const auto& instrument : all) {
    std::size_t place = placeIn(instrument->code.str(), wanted, folded);
    if (place != 0) place = std::min(place, placeIn(instrument->pinyin, wanted, folded));
    if (place != 0) place = std::min(place, placeIn(instrument->name.str(), wanted, folded));
    if (place != NOWHERE) (place == 0 ? begin : contain).push_back(&instrument);
  }
  CInstruments found;
  for (auto* const group : {&begin, &contain}) {
    const auto count = static_cast<std::ptrdiff_t>(std::min(most - found.size(), group->size()));
    std::partial_sort(group->begin(), group->begin() + count, group->end(),
                      [](const auto* a, const auto* b) { return isBefore(a->get(), b->get()); });
    for (std::ptrdiff_t i = 0; i < count; ++i) found.push_back(*(*group)[static_cast<std::size_t>(i)]);
  }
  return found;
}

}  // namespace VN
