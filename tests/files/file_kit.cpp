#include "file_kit.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTextCodec>

#include <zip.h>

#include <zlib.h>

#include <memory>

namespace {

const QByteArray RELATIONS =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>%1</Relationships>";

QByteArray relations(const QByteArray& inside) { return QByteArray(RELATIONS).replace("%1", inside); }

}  // namespace

CReading readLines(const QString& path, VN::EFileType type) {
  CReading reading;
  VN::CFileClient::readFileByLine(reading.result, type, path,
                                  [&reading](const QString& line) { reading.lines += line; });
  return reading;
}

CReading readBytes(const QByteArray& bytes, VN::EFileType type) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("table"));
  store(path, bytes);
  return readLines(path, type);
}

QByteArray zipOf(const std::vector<std::pair<QByteArray, QByteArray>>& parts) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("zip"));
  const zipFile zip = zipOpen64(QFile::encodeName(path).constData(), APPEND_STATUS_CREATE);
  for (const auto& [name, bytes] : parts) {
    zipOpenNewFileInZip64(zip, name.constData(), nullptr, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, Z_BEST_SPEED, 1);
    zipWriteInFileInZip(zip, bytes.constData(), static_cast<unsigned>(bytes.size()));
    zipCloseFileInZip(zip);
  }
  EXPECT_EQ(zipClose(zip, nullptr), ZIP_OK);
  return contentOf(path);
}

QByteArray xlsxOf(const QByteArray& sheet, const QByteArray& sharedTexts) {
  // The strict variant of the standard, with targets from the root of the file: readers must not mind.
  const QByteArray type = "http://purl.oclc.org/ooxml/officeDocument/relationships/";
  return zipOf({
      {"_rels/.rels", relations("<Relationship Id='a' Type='" + type + "officeDocument' Target='/book/wb.xml'/>")},
      {"book/wb.xml",
       "<workbook xmlns:r='r'><sheets><sheet name='x' r:id='s0'/><sheet name='y' r:id='s1'/></sheets></workbook>"},
      {"book/_rels/wb.xml.rels",
       relations("<Relationship Id='s0' Type='" + type + "chartsheet' Target='no.xml'/><Relationship Id='s1' Type='" +
                 type + "worksheet' Target='/book/One.xml'/><Relationship Id='t' Type='" + type +
                 "sharedStrings' Target='../texts.xml'/>")},
      {"texts.xml", "<sst>" + sharedTexts + "</sst>"},
      {"book/one.xml", "<worksheet>" + sheet + "</worksheet>"},
  });
}

QByteArray encoded(const char* codec, const QString& text) {
  const std::unique_ptr<QTextEncoder> encoder(QTextCodec::codecForName(codec)->makeEncoder(QTextCodec::IgnoreHeader));
  return encoder->fromUnicode(text);
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void store(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) << path.toStdString();
}

qint64 takePeakMemory() {
  const QByteArray status = contentOf(QStringLiteral("/proc/self/status"));
  const qint64 kilobytes = status.mid(status.indexOf("VmHWM:") + 6, 16).trimmed().split(' ').first().toLongLong();
  QFile reset(QStringLiteral("/proc/self/clear_refs"));  // where it cannot be written, the peak is the process's
  if (reset.open(QIODevice::WriteOnly)) reset.write("5");
  return kilobytes * 1024;
}
