#include "gw/files/CXmlPart.h"

namespace GW {

namespace {

constexpr int BLOCK = 1 << 14;
constexpr int MAX_TOKEN = 1 << 19;  ///< bytes; a full cell of escaped characters is shorter
constexpr int MAX_DEPTH = 64;
constexpr int MAX_EQUAL_SIGNS = 4096;

}  // namespace

CXmlPart::CXmlPart(CZipFile& file, const QString& name, const CCancelFlag& isCancelled)
    : m_part(file, name), m_isCancelled(isCancelled) {
  if (m_part.state() == CZipPart::EState::TooLarge) fail(ReadTooLarge);
  if (m_part.state() == CZipPart::EState::Damaged) fail(ReadDamaged);
}

void CXmlPart::fail(EReadResult result) {
  if (m_result == ReadWhole) m_result = result;
}

bool CXmlPart::feed() {
  char block[BLOCK];
  const int got = m_part.read(block, BLOCK);
  if (got <= 0) {
    fail(m_part.state() == CZipPart::EState::TooLarge ? ReadTooLarge : ReadDamaged);
    return false;
  }
  for (int i = 0; i < got; ++i) {
    if (block[i] == '<') m_equalSigns = 0;
    if (block[i] == '=' && ++m_equalSigns > MAX_EQUAL_SIGNS) fail(ReadDamaged);
  }
  m_sinceToken += got;
  if (m_sinceToken > MAX_TOKEN) fail(ReadTooLarge);
  m_xml.addData(QByteArray(block, got));
  return isFine();
}

QXmlStreamReader::TokenType CXmlPart::next() {
  if (m_isCancelled) fail(ReadCancelled);
  if (!isFine()) return QXmlStreamReader::Invalid;
  auto token = m_xml.readNext();
  while (token == QXmlStreamReader::Invalid && m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
    if (!feed()) return QXmlStreamReader::Invalid;
    token = m_xml.readNext();
  }
  m_sinceToken = 0;
  if (token == QXmlStreamReader::StartElement) {
    m_attributes = m_xml.attributes();
    ++m_depth;
  } else if (token == QXmlStreamReader::EndElement) {
    --m_depth;
  }
  if (token == QXmlStreamReader::Invalid || token == QXmlStreamReader::DTD || m_depth > MAX_DEPTH) {
    fail(ReadDamaged);
    return QXmlStreamReader::Invalid;
  }
  return token;
}

bool CXmlPart::nextChild(int depth) {
  while (isFine()) {
    const auto token = next();
    if (token == QXmlStreamReader::StartElement && m_depth == depth + 1) return true;
    if (token == QXmlStreamReader::EndDocument || (token == QXmlStreamReader::EndElement && m_depth < depth)) break;
  }
  return false;
}

QString CXmlPart::text() {
  const int outside = m_depth - 1;
  QString all;
  while (isFine() && m_depth > outside) {
    if (next() == QXmlStreamReader::Characters && m_depth == outside + 1) all += m_xml.text();
    if (all.size() > MAX_TOKEN) fail(ReadTooLarge);
  }
  return all;
}

QStringRef CXmlPart::attribute(const char* name) const {
  for (const QXmlStreamAttribute& attribute : m_attributes)
    if (attribute.name() == QLatin1String(name)) return attribute.value();
  return {};
}

EReadResult CXmlPart::finish() {
  while (isFine() && next() != QXmlStreamReader::EndDocument) {
  }
  char rest[256];
  while (isFine() && !m_isCancelled && m_part.read(rest, sizeof rest) > 0) {  // white space, as a rule
  }
  if (m_part.state() == CZipPart::EState::Damaged) fail(ReadDamaged);
  if (m_part.state() == CZipPart::EState::TooLarge) fail(ReadTooLarge);
  return m_result;
}

}  // namespace GW
