#include "gw/files/table_file.h"

#include "gw/files/CLineReader.h"
#include "gw/files/sheet_reader.h"
#include "gw/files/xls_child.h"

#include <QFile>
#include <QFileInfo>

namespace GW {

namespace {

const QByteArray ZIP = QByteArrayLiteral("PK\x03\x04");
const QByteArray OLD_BINARY = QByteArrayLiteral("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");

}  // namespace

EReadResult readTableFile(const QString& path, const CTakeRow& takeRow, const CCancelFlag& isCancelled,
                          bool* isSpreadsheet) {
  QFile file(path);
  // A pipe or a device would never end.
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) return ReadNotReadable;
  const QByteArray head = file.peek(OLD_BINARY.size());
  const bool isZip = head.startsWith(ZIP);
  const bool isOld = head == OLD_BINARY;
  if (isSpreadsheet != nullptr) *isSpreadsheet = isZip || isOld;
  if (isZip) return readXlsx(file, takeRow, isCancelled);
  if (isOld) return readXls(path, takeRow, isCancelled);
  const EReadResult result = readText(file, takeRow, isCancelled);
  return result == ReadDamaged && file.error() == QFileDevice::ReadError ? ReadNotReadable : result;
}

}  // namespace GW
