#pragma once

#include "host_api.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace GW {

// Small tables in files. On the GUI thread the functions below work on a thread of their own and return when that is
// done; meanwhile windows are painted, the user's input goes nowhere, and after half a second a modal box offers to
// cancel. So widgets of the caller may be gone when they return. On other threads they just do the work.

/// How the reading of a file ended. Except after ReadWhole, the rows before the end have been handed out.
enum EReadResult : int {
  ReadWhole = 0,
  ReadNotReadable = 1,  ///< no such file, not a plain file, no permission, or the disk failed
  ReadDamaged = 2,      ///< cut off, not a table, or in no known encoding
  ReadTooLarge = 3,     ///< a row of more than a million characters, or a spreadsheet that unpacks to too much
  ReadCancelled = 4     ///< by the user
};

/// Writes `content` as UTF-8 with byte order mark, which spreadsheet programs need to open Chinese text rightly.
/// `mode` holds the bits of QIODevice::OpenMode, 18 (WriteOnly and Text) as a rule. With `isWhole` the file is written
/// as a whole or not at all: until then, and after a failure, a full disk or the process's end, the file is the old
/// one; only WriteOnly, Truncate and Text are possible then. Without it the file is written in place.
/// False when it was not written, also because the user cancelled.
HOST_API bool writeFile(int mode, const QString& path, const QString& content, bool isWhole);

/// Spreadsheets in the newer container, .xlsx.
class HOST_API CXlsxReader {
 public:
  /// Writes one sheet, every cell as text, so that leading zeros stay. As a whole or not at all, like `writeFile`.
  /// False also when a cell has more than 32,767 characters, or for more than 1,048,576 rows or 16,384 columns.
  static bool write(const QString& path, const QList<QStringList>& rows);

  /// Hands out the rows of the first visible sheet on the caller's thread. The first row that is not empty is the
  /// header; the others have at least its width. Numbers come as people type them (600), dates as yyyy-MM-dd, formulas
  /// as their last result. Reads old .xls and text files too, a line of text as one cell.
  static EReadResult read(const QString& path, const std::function<void(const QStringList& cells)>& takeRow);
};

}  // namespace GW
