#include "gw/files.h"

#include "gw/files/CFileJob.h"
#include "gw/files/table_file.h"
#include "gw/files/xlsx_writer.h"

#include <QFile>
#include <QSaveFile>

#include <algorithm>

namespace GW {

namespace {

const QString READING = QStringLiteral("正在读取文件…");
const QString WRITING = QStringLiteral("正在写入文件…");
constexpr int BLOCK = 1 << 16;  ///< characters
constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

bool writeText(QIODevice& device, const QString& content, const CCancelFlag& isCancelled) {
  // Only a text that begins the file has the mark.
  if (device.pos() == 0 && device.write(BYTE_ORDER_MARK) < 0) return false;
  for (int at = 0; at < content.size();) {
    int end = std::min(at + BLOCK, content.size());
    if (end < content.size() && content.at(end).isLowSurrogate()) --end;
    if (isCancelled || device.write(content.midRef(at, end - at).toUtf8()) < 0) return false;
    at = end;
  }
  return !isCancelled;
}

bool writeWhole(QIODevice::OpenMode mode, const QString& path, const QString& content, const CCancelFlag& isCancelled) {
  constexpr auto POSSIBLE = QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text;
  if ((mode & ~POSSIBLE) != 0) return false;
  QSaveFile file(path);
  return file.open(mode) && writeText(file, content, isCancelled) && file.commit();
}

bool writeInPlace(QIODevice::OpenMode mode, const QString& path, const QString& content,
                  const CCancelFlag& isCancelled) {
  QFile file(path);
  return file.open(mode) && writeText(file, content, isCancelled) && file.flush();
}

}  // namespace

bool writeFile(int mode, const QString& path, const QString& content, bool isWhole) {
  const QIODevice::OpenMode bits(mode);
  if ((bits & (QIODevice::WriteOnly | QIODevice::Append)) == 0) return false;
  bool isWritten = false;
  CFileJob().run(WRITING, [&](CFileJob& job) {
    isWritten = (isWhole ? writeWhole : writeInPlace)(bits, path, content, job.isCancelled());
  });
  return isWritten;
}

bool CXlsxReader::write(const QString& path, const QList<QStringList>& rows) {
  bool isWritten = false;
  CFileJob().run(WRITING, [&](CFileJob& job) { isWritten = writeXlsx(path, rows, job.isCancelled()); });
  return isWritten;
}

EReadResult CXlsxReader::read(const QString& path, const std::function<void(const QStringList& cells)>& takeRow) {
  EReadResult result = ReadCancelled;
  const bool isWhole = CFileJob().run(
      READING,
      [&](CFileJob& job) {
        const auto put = [&job](QStringList&& cells) { return job.put(std::move(cells)); };
        result = readTableFile(path, put, job.isCancelled());
      },
      takeRow);
  return isWhole ? result : ReadCancelled;
}

}  // namespace GW
