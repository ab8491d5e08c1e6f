#pragma once

#include "vn/CFileClient.h"

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

#include <utility>
#include <vector>

/// What came of reading a file.
struct CReading {
  int result = -1;
  QStringList lines;
};

CReading readLines(const QString& path, VN::EFileType type = VN::FileTypeXlsx);

/// Reads what a file of these bytes holds.
CReading readBytes(const QByteArray& bytes, VN::EFileType type = VN::FileTypeXlsx);

/// A zip file of these parts.
QByteArray zipOf(const std::vector<std::pair<QByteArray, QByteArray>>& parts);

/// An .xlsx whose one sheet holds that XML inside its root, with those shared texts (XML of the si elements).
QByteArray xlsxOf(const QByteArray& sheet, const QByteArray& sharedTexts = {});

/// Text as bytes in a codec, such as "GB18030".
QByteArray encoded(const char* codec, const QString& text);

QByteArray contentOf(const QString& path);
void store(const QString& path, const QByteArray& bytes);

/// Most memory that the process has held since the last call, in bytes.
qint64 takePeakMemory();
