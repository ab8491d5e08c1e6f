#include "gw/files/CSharedStrings.h"

#include "gw/files/CXmlPart.h"
#include "gw/files/sheet_text.h"
#include "gw/files/table_limits.h"

namespace GW {

QString richText(CXmlPart& xml) {
  QString all;
  const int outer = xml.depth();
  while (xml.nextChild(outer)) {
    if (xml.is("t")) {
      all += xml.text();
    } else if (xml.is("r")) {
      while (xml.nextChild(outer + 1))
        if (xml.is("t")) all += xml.text();
    }
    if (all.size() > MAX_LINE) xml.fail(ReadTooLarge);
  }
  return unescapeCell(all);
}

EReadResult CSharedStrings::read(CZipFile& file, const QString& name, const CCancelFlag& isCancelled) {
  CXmlPart xml(file, name, isCancelled);
  xml.nextChild(CXmlPart::NO_ELEMENT);
  while (xml.nextChild(CXmlPart::ROOT)) {
    if (!xml.is("si")) continue;
    m_texts += richText(xml);
    m_ends.push_back(m_texts.size());
    if (m_texts.size() > MAX_SHARED_CHARS || count() > MAX_SHARED_STRINGS) xml.fail(ReadTooLarge);
  }
  return xml.finish();
}

QString CSharedStrings::at(int index) const {
  const auto i = static_cast<std::size_t>(index);
  const int begin = i == 0 ? 0 : m_ends[i - 1];
  return m_texts.mid(begin, m_ends[i] - begin);
}

}  // namespace GW
