#pragma once

#include "host_api.h"

#include <string>
#include <string_view>

namespace rdservice {

/// A repeating text (exchange, code, name) as a handle into a process-wide pool: one pointer per record, and equal
/// texts are equal handles. Pooled texts are never freed. Any thread; making one from a text takes a lock, so make it
/// once, when a record is decoded.
class HOST_API CInternedText {
 public:
  CInternedText() noexcept;
  CInternedText(std::string_view text);
  CInternedText(const std::string& text);
  CInternedText(const char* text);

  const std::string& str() const noexcept { return *m_text; }
  operator const std::string&() const noexcept { return *m_text; }
  bool empty() const noexcept { return m_text->empty(); }

  friend bool operator==(CInternedText a, CInternedText b) noexcept { return a.m_text == b.m_text; }
  friend bool operator!=(CInternedText a, CInternedText b) noexcept { return a.m_text != b.m_text; }
  /// Order of the texts, not of the handles.
  friend bool operator<(CInternedText a, CInternedText b) noexcept { return *a.m_text < *b.m_text; }

 private:
  const std::string* m_text;
};

}  // namespace rdservice
