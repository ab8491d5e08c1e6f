#include "gw/files/sheet_reader.h"

#include "gw/files/CRowPadder.h"
#include "gw/files/CSharedStrings.h"
#include "gw/files/CXmlPart.h"
#include "gw/files/sheet_text.h"
#include "gw/files/table_limits.h"
#include "gw/files/workbook_parts.h"

#include <cmath>

namespace GW {

namespace {

/// What a cell's text depends on beside the sheet.
struct CBook {
  CSharedStrings strings;
  std::vector<bool> dateStyles;
  bool is1904 = false;
};

/// How the value of a cell is to be read.
enum class ECell : unsigned char { Number, Shared, Boolean, AsItStands };

ECell cellKind(const QStringRef& type) {
  if (type.isEmpty() || type == QLatin1String("n")) return ECell::Number;
  if (type == QLatin1String("s")) return ECell::Shared;
  if (type == QLatin1String("b")) return ECell::Boolean;
  return ECell::AsItStands;  // a formula's text, an error, a date
}

/// Reads the rows of one sheet.
class CSheet {
 public:
  CSheet(CXmlPart& xml, const CBook& book, const CTakeRow& takeRow) : m_xml(xml), m_book(book), m_rows(takeRow) {}

  EReadResult read() {
    m_xml.nextChild(CXmlPart::NO_ELEMENT);
    while (m_xml.nextChild(CXmlPart::ROOT)) {
      if (!m_xml.is("sheetData")) continue;
      const int data = m_xml.depth();
      while (m_xml.nextChild(data))
        if (m_xml.is("row")) readRow();
    }
    return m_xml.finish();
  }

 private:
  void readRow() {
    const QStringRef number = m_xml.attribute("r");
    const int place = number.isEmpty() ? m_row + 1 : number.toInt() - 1;
    if (place <= m_row || place >= MAX_SHEET_ROWS) return m_xml.fail(ReadDamaged);
    m_row = place;
    QStringList cells;
    int column = -1;
    m_rowChars = 0;
    const int row = m_xml.depth();
    while (m_xml.nextChild(row)) {
      if (!m_xml.is("c")) continue;
      const QStringRef reference = m_xml.attribute("r");
      column = reference.isEmpty() ? column + 1 : columnOf(reference);
      if (column < 0 || column >= MAX_SHEET_COLUMNS) return m_xml.fail(ReadDamaged);
      const QString text = readCell();
      m_rowChars += text.size();
      if (m_rowChars > MAX_LINE) return m_xml.fail(ReadTooLarge);
      if (text.isEmpty()) continue;
      while (cells.size() <= column) cells.append(QString());
      cells[column] = text;
    }
    if (m_xml.isFine()) m_xml.fail(m_rows.take(std::move(cells)));
  }

  QString readCell() {
    const ECell kind = cellKind(m_xml.attribute("t"));
    const int style = m_xml.attribute("s").toInt();
    QString text;
    const int cell = m_xml.depth();
    while (m_xml.nextChild(cell)) {
      if (m_xml.is("v"))
        text = valueText(kind, style, m_xml.text());
      else if (m_xml.is("is"))
        text = richText(m_xml);
    }
    return text;
  }

  QString valueText(ECell kind, int style, const QString& value) {
    switch (kind) {
      case ECell::Shared: {
        bool isNumber = false;
        const int index = value.toInt(&isNumber);
        if (isNumber && index >= 0 && index < m_book.strings.count()) return m_book.strings.at(index);
        m_xml.fail(ReadDamaged);
        return {};
      }
      case ECell::Boolean: return value == QLatin1String("1") ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
      case ECell::Number: return isDate(style) ? dayText(value) : typedNumber(value);
      case ECell::AsItStands: break;
    }
    return unescapeCell(value);
  }

  bool isDate(int style) const {
    return style >= 0 && style < static_cast<int>(m_book.dateStyles.size()) &&
           m_book.dateStyles[static_cast<std::size_t>(style)];
  }

  QString dayText(const QString& value) const {
    bool isNumber = false;
    const double days = value.toDouble(&isNumber);
    return isNumber && std::isfinite(days) ? dateText(days, m_book.is1904) : value;
  }

  CXmlPart& m_xml;
  const CBook& m_book;
  CRowPadder m_rows;
  int m_row = -1;  ///< place of the present row
  qint64 m_rowChars = 0;
};

}  // namespace

EReadResult readXlsx(QIODevice& device, const CTakeRow& takeRow, const CCancelFlag& isCancelled) {
  CZipFile file(device);
  if (!file.isOpen()) return ReadDamaged;
  CWorkbookParts parts;
  CBook book;
  EReadResult result = findWorkbookParts(file, parts, isCancelled);
  book.is1904 = parts.is1904;
  if (result == ReadWhole && !parts.sharedStrings.isEmpty())
    result = book.strings.read(file, parts.sharedStrings, isCancelled);
  if (result == ReadWhole && !parts.styles.isEmpty())
    result = readDateStyles(file, parts.styles, book.dateStyles, isCancelled);
  if (result != ReadWhole) return result;
  CXmlPart xml(file, parts.sheet, isCancelled);
  return CSheet(xml, book, takeRow).read();
}

}  // namespace GW
