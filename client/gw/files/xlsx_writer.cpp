#include "gw/files/xlsx_writer.h"

#include "gw/files/CRowPadder.h"
#include "gw/files/sheet_reader.h"
#include "gw/files/sheet_text.h"
#include "gw/files/table_limits.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryFile>

#include <xlsxwriter.h>

#include <memory>

namespace GW {

namespace {

constexpr char SHEET_NAME[] = "Sheet1";
constexpr qint64 BLOCK = 1 << 16;

/// Sum over the rows as a reader sees them.
class CRowSum {
 public:
  CTakeRow taker() {
    return [this](QStringList&& cells) {
      for (const QString& cell : qAsConst(cells)) {
        const int size = cell.size();
        m_hash.addData(reinterpret_cast<const char*>(&size), sizeof size);
        m_hash.addData(reinterpret_cast<const char*>(cell.constData()), size * int{sizeof(QChar)});
      }
      m_hash.addData("\n", 1);
      return true;
    };
  }
  QByteArray result() const { return m_hash.result(); }

 private:
  QCryptographicHash m_hash{QCryptographicHash::Md5};  // against faults, not against people
};

bool fits(const QList<QStringList>& rows) {
  if (rows.size() > MAX_SHEET_ROWS) return false;
  for (const QStringList& row : rows) {
    if (row.size() > MAX_SHEET_COLUMNS) return false;
    for (const QString& cell : row)
      if (cell.size() > MAX_CELL) return false;
  }
  return true;
}

bool writeRow(lxw_worksheet* sheet, lxw_row_t number, const QStringList& row) {
  for (int column = 0; column < row.size(); ++column) {
    const QString& cell = row.at(column);
    if (cell.isEmpty()) continue;
    const QByteArray text = escapeCell(cell).toUtf8();
    if (worksheet_write_string(sheet, number, static_cast<lxw_col_t>(column), text.constData(), nullptr) !=
        LXW_NO_ERROR)
      return false;
  }
  return true;
}

bool writeBook(const QByteArray& path, const QList<QStringList>& rows, const CCancelFlag& isCancelled) {
  // Rows are written out as they come; the order of rows here allows it, and memory stays small.
  lxw_workbook_options options{LXW_TRUE, nullptr, LXW_FALSE};
  lxw_workbook* const book = workbook_new_opt(path.constData(), &options);
  if (book == nullptr) return false;
  lxw_worksheet* const sheet = workbook_add_worksheet(book, SHEET_NAME);
  bool isWritten = sheet != nullptr;
  for (int i = 0; isWritten && i < rows.size(); ++i)
    isWritten = !isCancelled && writeRow(sheet, static_cast<lxw_row_t>(i), rows.at(i));
  if (isWritten) return workbook_close(book) == LXW_NO_ERROR;
  lxw_workbook_free(book);
  return false;
}

/// The library does not see that a disk is full while it gathers a sheet, so what it wrote is read back.
bool holds(QIODevice& device, const QList<QStringList>& rows, const CCancelFlag& isCancelled) {
  CRowSum wanted;
  CRowPadder padder(wanted.taker());
  for (const QStringList& row : rows) {
    QStringList cells;
    for (const QString& cell : row) cells.append(storableCell(cell));
    if (padder.take(std::move(cells)) != ReadWhole) return false;
  }
  CRowSum found;
  return readXlsx(device, found.taker(), isCancelled) == ReadWhole && found.result() == wanted.result();
}

bool copy(QIODevice& from, const QString& path, const CCancelFlag& isCancelled) {
  QSaveFile to(path);
  if (!to.open(QIODevice::WriteOnly) || !from.seek(0)) return false;
  while (!isCancelled) {
    const QByteArray block = from.read(BLOCK);
    if (block.isEmpty()) return from.atEnd() && to.commit();
    if (to.write(block) != block.size()) break;
  }
  return false;
}

}  // namespace

bool writeXlsx(const QString& path, const QList<QStringList>& rows, const CCancelFlag& isCancelled) {
  if (!fits(rows)) return false;
  QTemporaryFile book(QDir::temp().filePath(QStringLiteral("table-XXXXXX.xlsx")));
  if (!book.open() || !writeBook(QFile::encodeName(book.fileName()), rows, isCancelled)) return false;
  QFile written(book.fileName());
  return written.open(QIODevice::ReadOnly) && holds(written, rows, isCancelled) && copy(written, path, isCancelled);
}

}  // namespace GW
