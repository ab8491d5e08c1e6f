#include "gw/files/CLineReader.h"

#include "gw/files/table_limits.h"

#include <QIODevice>
#include <QString>
#include <QTextCodec>

#include <algorithm>
#include <cstring>

namespace GW {

namespace {

constexpr int BLOCK = 1 << 16;

const char* codecName(ETextEncoding encoding) {
  switch (encoding) {
    case ETextEncoding::Utf8: return "UTF-8";
    case ETextEncoding::Utf16Le: return "UTF-16LE";
    case ETextEncoding::Utf16Be: return "UTF-16BE";
    case ETextEncoding::Gb18030: break;
  }
  return "GB18030";
}

int unitOf(ETextEncoding encoding) {
  return encoding == ETextEncoding::Utf16Le || encoding == ETextEncoding::Utf16Be ? 2 : 1;
}

QByteArray encodedLineEnd(ETextEncoding encoding) {
  switch (encoding) {
    case ETextEncoding::Utf16Le: return QByteArray("\n\0", 2);
    case ETextEncoding::Utf16Be: return QByteArray("\0\n", 2);
    default: return "\n";
  }
}

}  // namespace

CLineReader::CLineReader(QIODevice& device, CTextStart start)
    : m_device(device),
      m_encoding(start.encoding),
      m_unit(unitOf(start.encoding)),
      m_codec(QTextCodec::codecForName(codecName(start.encoding))) {
  m_hasFailed = m_codec == nullptr || !m_device.seek(start.markBytes);
}

bool CLineReader::fill() {
  if (m_hasFailed) return false;
  if (m_at > 0) {
    m_bytes.remove(0, m_at);
    m_at = 0;
  }
  const int held = m_bytes.size();
  m_bytes.resize(held + BLOCK);
  const qint64 got = m_device.read(m_bytes.data() + held, BLOCK);
  m_bytes.resize(held + static_cast<int>(std::max<qint64>(got, 0)));
  m_hasFailed = got < 0;
  return got > 0;
}

/// Where the first line feed at or behind `from` stands; -1 when there is none yet. No byte of a longer character is a
/// line feed in UTF-8 and GB18030.
int CLineReader::findLineEnd(int from) const {
  const char* const bytes = m_bytes.constData();
  const int size = m_bytes.size();
  while (from < size) {
    const auto* const found =
        static_cast<const char*>(std::memchr(bytes + from, '\n', static_cast<std::size_t>(size - from)));
    if (found == nullptr) return -1;
    const int at = static_cast<int>(found - bytes);
    if (m_unit == 1) return at;
    const int begin = at - (at - m_at) % 2;
    if (begin + 1 < size && bytes[begin + (m_encoding == ETextEncoding::Utf16Le ? 1 : 0)] == 0 &&
        bytes[begin + (m_encoding == ETextEncoding::Utf16Le ? 0 : 1)] == '\n')
      return begin;
    from = at + 1;
  }
  return -1;
}

/// The line with its line end, which shows that no character before it was cut off.
bool CLineReader::decode(int begin, int end, QString& line) const {
  QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
  line = m_codec->toUnicode(m_bytes.constData() + begin, end + m_unit - begin, &state);
  const bool isEnded = line.endsWith(QLatin1Char('\n'));
  line.chop(line.endsWith(QLatin1String("\r\n")) ? 2 : 1);
  // Some codecs do not count what they could not read, but all of them put this character there.
  const bool isReplaced = m_encoding == ETextEncoding::Gb18030 && line.contains(QChar::ReplacementCharacter);
  return isEnded && state.invalidChars == 0 && !isReplaced && !line.contains(QChar(0)) && line.isValidUtf16();
}

CLineReader::ELine CLineReader::next(QString& line) {
  int searched = m_at;
  for (;;) {
    const int end = findLineEnd(searched);
    if (end >= 0 && end - m_at <= MAX_LINE) {
      m_hasFailed = m_hasFailed || !decode(m_at, end, line);
      m_at = end + m_unit;
      return m_hasFailed ? ELine::Damaged : ELine::Line;
    }
    const int left = m_bytes.size() - m_at;
    if (left > MAX_LINE + m_unit) {
      m_hasFailed = true;
      return ELine::TooLarge;
    }
    const bool isFilled = fill();  // what is left begins the buffer now
    if (m_hasFailed || (!isFilled && left % m_unit != 0)) return ELine::Damaged;
    if (!isFilled && left == 0) return ELine::End;
    if (!isFilled) m_bytes += encodedLineEnd(m_encoding);
    searched = left - left % m_unit;  // a unit may be cut by the end of the block
  }
}

EReadResult readText(QIODevice& device, const CTakeRow& takeRow, const CCancelFlag& isCancelled) {
  CLineReader reader(device, detectEncoding(device, isCancelled));
  QString line;
  while (!isCancelled) {
    switch (reader.next(line)) {
      case CLineReader::ELine::Line:
        if (!takeRow(QStringList(line))) return ReadCancelled;
        break;
      case CLineReader::ELine::End: return ReadWhole;
      case CLineReader::ELine::Damaged: return ReadDamaged;
      case CLineReader::ELine::TooLarge: return ReadTooLarge;
    }
  }
  return ReadCancelled;
}

}  // namespace GW
