#pragma once

#include <QCollator>
#include <QCollatorSortKey>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace GW {

/// Sort keys of texts (UTF-8): codes and numbers, which are ASCII, by their characters and before all others; the
/// others by pinyin (zh_CN), through ranks that leave room between each other for texts to come. GUI thread.
class CTextOrder {
 public:
  CTextOrder();

  /// Equal texts have equal keys, and keys are in the order of their texts. ASCII texts of more than seven characters
  /// may share a key (`isAmbiguous`).
  std::uint64_t key(std::string_view text);
  /// The same for a text that lives as long as the process, found by its address.
  std::uint64_t pooledKey(const std::string& text);

  /// Of an ASCII text: the key of what stands behind the characters of so many keys.
  static std::uint64_t nextKey(std::string_view text, std::size_t keys);
  static bool isAmbiguous(std::uint64_t key) { return key >> 63 == 0 && (key & 0xff) != 0; }

  /// Whether no room was left for a text.
  bool isFull() const { return m_isFull; }
  /// When no room was left for a text, every rank is made anew: true, and all keys made before are void.
  bool renumberIfNeeded();

 private:
  using CPlace = std::pair<QCollatorSortKey, std::string>;  // the text parts texts that collate alike
  struct CBefore {
    bool operator()(const CPlace& a, const CPlace& b) const {
      const int order = a.first.compare(b.first);
      return order != 0 ? order < 0 : a.second < b.second;
    }
  };

  std::uint64_t rank(const std::string& text);

  QCollator m_collator;
  std::map<CPlace, std::uint64_t, CBefore> m_places;
  std::unordered_map<std::string, std::uint64_t> m_ranks;
  std::unordered_map<const std::string*, std::uint64_t> m_pooled;
  /// The last pooled texts, each at a place of its own address.
  struct CRecent {
    const std::string* text = nullptr;
    std::uint64_t key = 0;
  };
  std::array<CRecent, 256> m_recent{};
  bool m_isFull = false;
};

}  // namespace GW
