#include "gw/table/CTextOrder.h"

#include "gw/table/CCell.h"

#include <QLocale>
#include <QString>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace GW {

namespace {

constexpr std::size_t KEY_BYTES = 8;

bool isAscii(std::string_view text) {
  unsigned char all = 0;
  for (const char c : text) all |= static_cast<unsigned char>(c);
  return (all & 0x80U) == 0;
}

std::uint64_t asciiKey(std::string_view text) {
  unsigned char bytes[KEY_BYTES] = {};
  std::memcpy(bytes, text.data(), std::min(text.size(), KEY_BYTES));
  std::uint64_t key = 0;
  for (const unsigned char byte : bytes) key = key << 8U | byte;
  return key;
}

}  // namespace

CTextOrder::CTextOrder() : m_collator(QLocale(QLocale::Chinese, QLocale::China)) {}

std::uint64_t CTextOrder::key(std::string_view text) {
  return isAscii(text) ? asciiKey(text) : TOP_BIT | rank(std::string(text));
}

std::uint64_t CTextOrder::nextKey(std::string_view text, std::size_t keys) {
  return asciiKey(text.substr(std::min(text.size(), keys * KEY_BYTES)));
}

std::uint64_t CTextOrder::pooledKey(const std::string& text) {
  CRecent& recent = m_recent[reinterpret_cast<std::uintptr_t>(&text) / sizeof(std::string) % m_recent.size()];
  if (recent.text != &text) {
    auto known = m_pooled.find(&text);
    if (known == m_pooled.end()) known = m_pooled.emplace(&text, key(text)).first;
    recent = {&text, known->second};
  }
  return recent.key;
}

std::uint64_t CTextOrder::rank(const std::string& text) {
  const auto known = m_ranks.find(text);
  if (known != m_ranks.end()) return known->second;
  const auto it = m_places.emplace(CPlace(m_collator.sortKey(QString::fromStdString(text)), text), 0).first;
  const std::uint64_t below = it == m_places.begin() ? 0 : std::prev(it)->second;
  const std::uint64_t above = std::next(it) == m_places.end() ? TOP_BIT : std::next(it)->second;
  it->second = below + (above - below) / 2;
  m_isFull = m_isFull || it->second <= below;
  m_ranks.emplace(text, it->second);
  return it->second;
}

bool CTextOrder::renumberIfNeeded() {
  if (!m_isFull) return false;
  m_isFull = false;
  m_pooled.clear();
  m_recent.fill({});
  const std::uint64_t step = TOP_BIT / (m_places.size() + 1);
  std::uint64_t next = 0;
  for (auto& [place, rank] : m_places) {
    rank = next += step;
    m_ranks[place.second] = rank;
  }
  return true;
}

}  // namespace GW
