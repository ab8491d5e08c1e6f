#include "gw/files/text_encoding.h"

#include "gw/files/table_limits.h"

#include <QByteArray>
#include <QIODevice>

namespace GW {

namespace {

constexpr qint64 BLOCK = 1 << 16;

struct CMark {
  const char* bytes;
  CTextStart start;
};

constexpr CMark MARKS[] = {
    {"\xEF\xBB\xBF", {ETextEncoding::Utf8, 3}},
    {"\xFF\xFE", {ETextEncoding::Utf16Le, 2}},
    {"\xFE\xFF", {ETextEncoding::Utf16Be, 2}},
};

/// Checks UTF-8 block by block. Overlong forms and surrogates are refused: short GB18030 texts look like them.
class CUtf8Check {
 public:
  bool take(const QByteArray& block) {
    for (const char c : block) {
      const auto byte = static_cast<unsigned char>(c);
      if (m_missing == 0 && byte < 0x80) continue;
      if (!takeByte(byte)) return false;
    }
    return true;
  }

  /// True when the text ended inside a character and had no other one above ASCII that shows that it is UTF-8.
  bool isOnlyBroken() const { return m_missing > 0 && !m_hasCharacter; }

 private:
  bool takeByte(unsigned char byte) {
    if (m_missing > 0) {
      if (byte < m_low || byte > m_high) return false;
      m_low = 0x80;
      m_high = 0xBF;
      if (--m_missing == 0) m_hasCharacter = true;
      return true;
    }
    if (byte < 0xC2 || byte > 0xF4) return false;
    m_missing = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
    m_low = byte == 0xE0 ? 0xA0 : byte == 0xF0 ? 0x90 : 0x80;
    m_high = byte == 0xED ? 0x9F : byte == 0xF4 ? 0x8F : 0xBF;
    return true;
  }

  int m_missing = 0;  ///< bytes that the present character still needs
  unsigned char m_low = 0x80;
  unsigned char m_high = 0xBF;
  bool m_hasCharacter = false;
};

}  // namespace

CTextStart detectEncoding(QIODevice& device, const CCancelFlag& isCancelled) {
  device.seek(0);
  const QByteArray head = device.peek(3);
  for (const CMark& mark : MARKS)
    if (head.startsWith(mark.bytes)) return mark.start;
  CUtf8Check check;
  qint64 lineBytes = 0;  ///< of the line that the block ends in
  while (!isCancelled) {
    const QByteArray block = device.read(BLOCK);
    if (block.isEmpty()) break;
    // No text, or a line beyond all measure; the reader will say so.
    const int lineEnd = block.lastIndexOf('\n');
    lineBytes = lineEnd < 0 ? lineBytes + block.size() : block.size() - lineEnd;
    if (lineBytes > MAX_LINE + BLOCK || block.contains('\0')) break;
    if (!check.take(block)) return {ETextEncoding::Gb18030, 0};
  }
  return {check.isOnlyBroken() ? ETextEncoding::Gb18030 : ETextEncoding::Utf8, 0};
}

}  // namespace GW
