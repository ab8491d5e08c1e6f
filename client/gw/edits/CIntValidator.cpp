#include "gw/line_edits.h"

#include <algorithm>
#include <cassert>

namespace GW {

CIntValidator::CIntValidator(int minimum, int maximum, QObject* parent) : QIntValidator(minimum, maximum, parent) {
  assert(minimum >= 0 && minimum <= maximum);
}

CIntValidator::~CIntValidator() = default;

QValidator::State CIntValidator::validate(QString& text, int&) const {
  if (text.isEmpty()) return Intermediate;
  // Not by the base: what that takes for digits, and whether they are grouped, depends on the locale.
  if (!std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; })) return Invalid;
  const int mostDigits = QString::number(top()).size();
  if (text.size() > mostDigits) return Invalid;
  const qlonglong number = text.toLongLong();
  if (number > top()) return Invalid;
  if (number >= bottom()) return Acceptable;
  return text.size() < mostDigits ? Intermediate : Invalid;
}

}  // namespace GW
