#include "rdservice/CInternedText.h"

#include "utils/CMutex.h"

#include <array>
#include <deque>
#include <functional>
#include <unordered_map>

namespace rdservice {

namespace {

/// A part of the pool with its own lock, so that decoding threads seldom meet.
class CShard {
 public:
  const std::string* intern(std::string_view text) {
    const utils::CMutexLock lock(m_mutex);
    const auto found = m_index.find(text);
    if (found != m_index.end()) return found->second;
    const std::string* pooled = &m_texts.emplace_back(text);
    m_index.emplace(*pooled, pooled);
    return pooled;
  }

 private:
  utils::CMutex m_mutex;
  std::deque<std::string> m_texts TS_GUARDED_BY(m_mutex);  // never moves its elements
  std::unordered_map<std::string_view, const std::string*> m_index TS_GUARDED_BY(m_mutex);
};

constexpr std::size_t SHARD_BITS = 5;

/// What this thread has found in the pool, by hash: a reply repeats a few texts, and these take no lock.
constexpr std::size_t RECENT_TEXTS = 1024;
thread_local std::array<const std::string*, RECENT_TEXTS> recentTexts{};

// Both are never destroyed: records in static objects may still be read while the process ends.
const std::string* emptyText() {
  static const auto* const s_empty = new std::string;
  return s_empty;
}

const std::string* intern(std::string_view text) {
  static auto* const s_shards = new std::array<CShard, std::size_t{1} << SHARD_BITS>;
  if (text.empty()) return emptyText();
  const std::uint64_t hash = std::hash<std::string_view>()(text);
  const std::string*& recent = recentTexts[hash % RECENT_TEXTS];
  // The high bits: the low ones choose the bucket inside the shard.
  if (recent == nullptr || *recent != text) recent = (*s_shards)[hash >> (64 - SHARD_BITS)].intern(text);
  return recent;
}

}  // namespace

CInternedText::CInternedText() noexcept : m_text(emptyText()) {}
CInternedText::CInternedText(std::string_view text) : m_text(intern(text)) {}
CInternedText::CInternedText(const std::string& text) : m_text(intern(text)) {}
CInternedText::CInternedText(const char* text) : m_text(text == nullptr ? emptyText() : intern(text)) {}

}  // namespace rdservice
