#include "gw/files/xls_child.h"

#include "gw/files/CRowPadder.h"
#include "gw/files/table_limits.h"
#include "gw/files/xls_protocol.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#include <dlfcn.h>

#include <cstring>

namespace GW {

namespace {

constexpr int LOOK_MS = 50;                 ///< between two looks at `isCancelled`
constexpr qint64 MOST_SILENCE_MS = 30'000;  ///< of the child
constexpr std::uint32_t WORD = sizeof(std::uint32_t);

/// Folder of the library, or program, that this function is linked into.
QString ownFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&readXls), &info) == 0 || info.dli_fname == nullptr) return {};
  return QFileInfo(QFile::decodeName(info.dli_fname)).absolutePath();
}

/// The child's program: as installed, beside this library, or where it was built; empty when there is none.
QString findProgram() {
  const QString name = QLatin1String(XLS_PROGRAM);
  const QString own = ownFolder();
  const QString places[] = {own + QStringLiteral("/" PC_LIBEXEC_FROM_LIB "/") + name, own + QLatin1Char('/') + name,
                            QStringLiteral(PC_XLS_BUILT)};
  for (const QString& place : places)
    if (QFileInfo(place).isExecutable()) return QDir::cleanPath(place);
  return {};
}

/// Takes rows out of what the child says.
class CRowParser {
 public:
  explicit CRowParser(const CTakeRow& takeRow) : m_rows(takeRow) {}

  void add(const QByteArray& bytes) { m_bytes += bytes; }

  /// Hands out the rows that are complete. ReadWhole as long as all is well.
  EReadResult takeRows() {
    int begin = 0;
    EReadResult result = ReadWhole;
    while (result == ReadWhole && !m_isEnded) {
      int at = begin;
      QStringList cells;
      if (!takeRow(at, cells, result)) break;
      begin = at;
      if (!m_isEnded && result == ReadWhole) result = m_rows.take(std::move(cells));
    }
    m_bytes.remove(0, begin);
    return result != ReadWhole || m_bytes.size() <= MAX_ROW_BYTES ? result : ReadTooLarge;
  }

  bool isEnded() const { return m_isEnded; }

 private:
  static constexpr int MAX_ROW_BYTES = 4 * MAX_LINE;

  bool takeWord(int& at, std::uint32_t& word) const {
    if (m_bytes.size() - at < static_cast<int>(WORD)) return false;
    std::memcpy(&word, m_bytes.constData() + at, WORD);
    at += static_cast<int>(WORD);
    return true;
  }

  /// False when the row has not come to its end yet.
  bool takeRow(int& at, QStringList& cells, EReadResult& result) {
    std::uint32_t count = 0;
    if (!takeWord(at, count)) return false;
    m_isEnded = count == XLS_END;
    if (m_isEnded) return true;
    if (count > MAX_SHEET_COLUMNS) {
      result = ReadDamaged;
      return true;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
      std::uint32_t length = 0;
      if (!takeWord(at, length) || length > static_cast<std::uint32_t>(m_bytes.size() - at)) return false;
      cells.append(QString::fromUtf8(m_bytes.constData() + at, static_cast<int>(length)));
      at += static_cast<int>(length);
    }
    return true;
  }

  CRowPadder m_rows;
  QByteArray m_bytes;
  bool m_isEnded = false;
};

}  // namespace

EReadResult readXls(const QString& path, const CTakeRow& takeRow, const CCancelFlag& isCancelled) {
  if (QFileInfo(path).size() > MAX_XLS_BYTES) return ReadTooLarge;
  const QString program = findProgram();
  if (program.isEmpty()) return ReadNotReadable;
  QProcess child;
  child.setStandardErrorFile(QProcess::nullDevice());
  child.start(program, {QFileInfo(path).absoluteFilePath()}, QIODevice::ReadOnly);
  if (!child.waitForStarted()) return ReadNotReadable;
  QElapsedTimer timer;
  timer.start();
  CRowParser parser(takeRow);
  EReadResult result = ReadWhole;
  while (result == ReadWhole && !parser.isEnded()) {
    if (isCancelled) result = ReadCancelled;
    const bool isRunning = child.state() != QProcess::NotRunning;
    if (child.bytesAvailable() == 0 && isRunning) child.waitForReadyRead(LOOK_MS);
    const QByteArray bytes = child.readAllStandardOutput();
    if (bytes.isEmpty() && (!isRunning || timer.elapsed() > MOST_SILENCE_MS)) break;
    if (!bytes.isEmpty()) timer.start();
    parser.add(bytes);
    if (result == ReadWhole) result = parser.takeRows();
  }
  if (result == ReadWhole && !parser.isEnded()) result = ReadDamaged;
  child.kill();
  child.waitForFinished();
  return result;
}

}  // namespace GW
