#pragma once

#include "gw/files/CZipFile.h"
#include "gw/files/table_reading.h"

#include <QString>
#include <QXmlStreamReader>

namespace GW {

/// Walks through the elements of an XML part of a zip file, and bounds what hostile XML can cost: no document type
/// definition, few levels, texts and tags of a bounded size. One thread.
///
/// After an error every walk ends as if the elements did.
class CXmlPart {
 public:
  CXmlPart(CZipFile& file, const QString& name, const CCancelFlag& isCancelled);

  static constexpr int NO_ELEMENT = 0;
  static constexpr int ROOT = 1;

  /// Goes to the next child of the element open at that depth: NO_ELEMENT for the root itself, ROOT for the root's
  /// children, 2 for theirs. What was not read of an earlier child is passed over. False when the element has ended.
  bool nextChild(int depth);
  /// Text of the present element up to its end, without that of elements inside.
  QString text();
  int depth() const { return m_depth; }

  /// Names are compared without their prefix.
  bool is(const char* name) const { return m_xml.name() == QLatin1String(name); }
  /// Of the element entered last; valid until the next move. Empty when there is none.
  QStringRef attribute(const char* name) const;

  /// Reads what is left, so that the checksum is compared too.
  EReadResult finish();
  EReadResult result() const { return m_result; }
  bool isFine() const { return m_result == ReadWhole; }
  void fail(EReadResult result);

 private:
  QXmlStreamReader::TokenType next();
  bool feed();

  CZipPart m_part;
  const CCancelFlag& m_isCancelled;
  QXmlStreamReader m_xml;
  QXmlStreamAttributes m_attributes;
  int m_depth = 0;
  int m_sinceToken = 0;  ///< bytes fed since the last token
  int m_equalSigns = 0;  ///< since the last "<": the reader's work for a tag grows with the square of its attributes
  EReadResult m_result = ReadWhole;
};

}  // namespace GW
