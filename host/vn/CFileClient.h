#pragma once

#include "gw/files.h"
#include "host_api.h"

#include <QString>

#include <functional>

namespace VN {

/// What a file is by its name. What it holds is seen from its content.
enum EFileType : int { FileTypeCsv = 0, FileTypeXlsx = 1, FileTypeXls = 2 };

class HOST_API CFileClient {
 public:
  /// Reads a table line by line; see the head of gw/files.h for what happens meanwhile. GUI thread, which also runs
  /// `takeLine`; the callback guards itself against objects that are gone.
  ///
  /// A text file (UTF-8 with or without byte order mark, UTF-16 with one, GB18030; lines ended by LF or CRLF) comes as
  /// it stands. Of a spreadsheet (.xlsx or old .xls) come the rows that `GW::CXlsxReader::read` describes, cells
  /// joined by a comma for FileTypeCsv and by a tab for the others; separators and line breaks inside a cell become
  /// spaces. `result` becomes a GW::EReadResult.
  static void readFileByLine(int& result, EFileType type, const QString& path,
                             const std::function<void(const QString& line)>& takeLine);
};

/// Folder in which file dialogs begin: that of the file chosen last, or the user's documents. GUI thread.
HOST_API QString getOpenFileDir();
/// Remembers the folder of the file at `path`, which the user has chosen. GUI thread.
HOST_API void setOpenFileDir(const QString& path);

}  // namespace VN
