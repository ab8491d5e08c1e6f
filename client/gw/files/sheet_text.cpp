#include "gw/files/sheet_text.h"

#include "gw/files/number_digits.h"
#include "gw/files/table_limits.h"

#include <QDateTime>

#include <cmath>

namespace GW {

namespace {

constexpr int ESCAPE = 7;               ///< length of _xHHHH_
constexpr double LAST_DAY = 2'958'466;  ///< the day after 9999-12-31
constexpr qint64 SECONDS_A_DAY = 86'400;

bool isEscape(const QString& text, int at) {
  if (at + ESCAPE > text.size() || text.at(at) != QLatin1Char('_') || text.at(at + 1) != QLatin1Char('x') ||
      text.at(at + ESCAPE - 1) != QLatin1Char('_'))
    return false;
  bool isHex = false;
  text.midRef(at + 2, 4).toUShort(&isHex, 16);
  return isHex;
}

bool isStorable(QChar c) {
  const ushort code = c.unicode();
  return code >= 0x20 ? code < 0xFFFE : code == '\t' || code == '\n';
}

}  // namespace

QString numberText(double value) { return QString::fromLatin1(numberDigits(value).c_str()); }

QString typedNumber(const QString& text) {
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  return isNumber && std::isfinite(value) ? numberText(value) : text;
}

QString unescapeCell(const QString& text) {
  int at = text.indexOf(QLatin1String("_x"));
  if (at < 0) return text;
  QString plain = text.left(at);
  for (; at < text.size(); ++at) {
    if (!isEscape(text, at)) {
      plain += text.at(at);
      continue;
    }
    plain += QChar(text.midRef(at + 2, 4).toUShort(nullptr, 16));
    at += ESCAPE - 1;
  }
  return plain;
}

QString storableCell(const QString& text) {
  if (text.isValidUtf16()) return text;
  QString clean = text;
  for (int i = 0; i < clean.size(); ++i) {
    if (!clean.at(i).isSurrogate()) continue;
    if (clean.at(i).isHighSurrogate() && i + 1 < clean.size() && clean.at(i + 1).isLowSurrogate())
      ++i;
    else
      clean[i] = QChar(QChar::ReplacementCharacter);
  }
  return clean;
}

QString escapeCell(const QString& text) {
  const QString clean = storableCell(text);
  QString escaped;
  escaped.reserve(clean.size());
  for (int i = 0; i < clean.size(); ++i) {
    const QChar c = clean.at(i);
    if (isStorable(c) && !isEscape(clean, i))
      escaped += c;
    else
      escaped += QStringLiteral("_x%1_").arg(c.unicode(), 4, 16, QLatin1Char('0'));
  }
  return escaped;
}

int columnOf(const QStringRef& reference) {
  int column = 0;
  for (const QChar c : reference) {
    if (c < QLatin1Char('A') || c > QLatin1Char('Z')) break;
    column = column * 26 + (c.unicode() - 'A' + 1);
    if (column > MAX_SHEET_COLUMNS) return -1;
  }
  return column - 1;
}

QString dateText(double days, bool is1904) {
  if (!(days >= 0 && days < LAST_DAY)) return numberText(days);
  // Day 60 of the older count is 29 February 1900, which never was.
  const QDate first = is1904 ? QDate(1904, 1, 1) : days < 60 ? QDate(1899, 12, 31) : QDate(1899, 12, 30);
  const qint64 seconds = std::llround(days * SECONDS_A_DAY);
  const QDate date = first.addDays(seconds / SECONDS_A_DAY);
  const QTime time = QTime(0, 0).addSecs(static_cast<int>(seconds % SECONDS_A_DAY));
  const QString timeText = time.toString(QStringLiteral("HH:mm:ss"));
  if (days < 1 && seconds > 0) return timeText;
  return date.toString(Qt::ISODate) + (seconds % SECONDS_A_DAY == 0 ? QString() : QLatin1Char(' ') + timeText);
}

bool isDateFormat(int id, const QString& code) {
  // Those below 164 are agreed upon and have no code in most files.
  if ((id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47) || (id >= 50 && id <= 58)) return true;
  bool isQuoted = false;
  for (int i = 0; i < code.size(); ++i) {
    const QChar c = code.at(i).toLower();
    if (c == QLatin1Char('"')) isQuoted = !isQuoted;
    if (isQuoted) continue;
    if (c == QLatin1Char('\\') || c == QLatin1Char('_') || c == QLatin1Char('*')) {
      ++i;
    } else if (c == QLatin1Char('[')) {  // a colour, a condition or a language, as [Red] and [$-804]
      const int end = code.indexOf(QLatin1Char(']'), i);
      if (end < 0) return false;
      i = end;
    } else if (c == QLatin1Char('y') || c == QLatin1Char('d') || c == QLatin1Char('h')) {
      return true;
    } else if (c == QLatin1Char(';')) {
      return false;
    }
  }
  return false;
}

}  // namespace GW
