#include "vn/CFileClient.h"

#include "gw/files/CFileJob.h"
#include "gw/files/table_file.h"
#include "utils/threads.h"

namespace VN {

namespace {

const QString READING = QStringLiteral("正在读取文件…");

/// The row as one line. What would break the line or shift its cells becomes a space.
QString joined(const QStringList& cells, QChar separator) {
  QString line;
  for (int i = 0; i < cells.size(); ++i) {
    if (i > 0) line += separator;
    for (const QChar c : cells.at(i))
      line += c == separator || c == QLatin1Char('\n') || c == QLatin1Char('\r') ? QLatin1Char(' ') : c;
  }
  return line;
}

}  // namespace

void CFileClient::readFileByLine(int& result, EFileType type, const QString& path,
                                 const std::function<void(const QString& line)>& takeLine) {
  utils::assertGui();
  const QChar separator = QLatin1Char(type == FileTypeCsv ? ',' : '\t');
  // The caller's own may be gone when the file has been read.
  const auto take = takeLine;
  GW::EReadResult end = GW::ReadCancelled;
  const auto work = [&](GW::CFileJob& job) {
    bool isSpreadsheet = false;
    const auto put = [&](QStringList&& cells) {
      return job.put(isSpreadsheet ? QStringList(joined(cells, separator)) : std::move(cells));
    };
    end = GW::readTableFile(path, put, job.isCancelled(), &isSpreadsheet);
  };
  const bool isWhole = GW::CFileJob().run(READING, work, [&](const QStringList& row) { take(row.first()); });
  result = isWhole ? end : GW::ReadCancelled;
}

}  // namespace VN
