#pragma once

#include <QString>
#include <QStringRef>

namespace GW {

// Texts of spreadsheet cells and their form in .xlsx files, where characters that XML cannot hold stand as _xHHHH_.

/// As people type it: 15 significant digits, no exponent where plain digits do (below 1e21).
QString numberText(double value);
/// A number of a file as people type it; another text as it stands.
QString typedNumber(const QString& text);

QString unescapeCell(const QString& text);
/// Characters that are no text (halves of pairs) become U+FFFD.
QString escapeCell(const QString& text);
/// What reading gives back after `escapeCell`.
QString storableCell(const QString& text);

/// Column of a reference such as "AB12", from 0; -1 when it is none.
int columnOf(const QStringRef& reference);

/// Date of a day number of a spreadsheet as yyyy-MM-dd, with a time if it has one; `is1904` tells the first day.
QString dateText(double days, bool is1904);
/// Whether a number format, such as "yyyy/m/d", shows dates.
bool isDateFormat(int id, const QString& code);

}  // namespace GW
