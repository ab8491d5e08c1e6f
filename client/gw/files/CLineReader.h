#pragma once

#include "gw/files/text_encoding.h"

#include <QByteArray>

#include <memory>

class QIODevice;
class QString;
class QTextCodec;

namespace GW {

/// Reads a text line by line and holds only one line. Line ends (LF, CRLF) are cut off. One thread.
class CLineReader {
 public:
  enum class ELine : unsigned char { Line, End, Damaged, TooLarge };

  /// `device` is seekable, open for reading, and outlives the reader.
  CLineReader(QIODevice& device, CTextStart start);

  /// Nothing follows after another answer than Line. Damaged: bytes that are not text in the encoding, or a failing
  /// device.
  ELine next(QString& line);

 private:
  bool fill();
  int findLineEnd(int from) const;
  bool decode(int begin, int end, QString& line) const;

  QIODevice& m_device;
  const ETextEncoding m_encoding;
  const int m_unit;  ///< bytes of a code unit
  QTextCodec* const m_codec;
  QByteArray m_bytes;
  int m_at = 0;
  bool m_hasFailed = false;
};

/// Reads a whole text, each line as a row of one cell.
EReadResult readText(QIODevice& device, const CTakeRow& takeRow, const CCancelFlag& isCancelled);

}  // namespace GW
