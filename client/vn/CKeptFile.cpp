#include "vn/CKeptFile.h"

#include "utils/CLogCenter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace VN {

namespace {

constexpr utils::CLogSite SITE{"CKeptFile.cpp", "VN::CKeptFile"};

/// Larger files are neither read nor written.
constexpr qint64 MOST_BYTES = 64 << 20;
constexpr int MOST_KEPT_ASIDE = 1000;

// Texts for users; %1 is what the file keeps, %2 its path.
const char* const TOO_LARGE = "超过 %1 字节";
const char* const DAMAGED = "%1文件 %2 有误（%3），已改名为 %4";
const char* const DAMAGED_IN_PLACE = "%1文件 %2 有误（%3），且不能改名，本次不保存%1";
const char* const UNREADABLE = "%1文件 %2 不能读取（%3），本次不保存%1";
const char* const NOT_WRITTEN = "%1文件 %2 不能保存: %3";
const char* const LEFT_ALONE = "启动时不能读取，未改动";

}  // namespace

bool CKeptFile::read(QByteArray& text) {
  QFile file(m_path);
  if (m_path.isEmpty() || !file.exists()) return false;
  if (file.size() > MOST_BYTES) {
    keepAside(QString::fromUtf8(TOO_LARGE).arg(MOST_BYTES));
    return false;
  }
  if (file.open(QIODevice::ReadOnly)) text = file.readAll();
  if (file.error() == QFileDevice::NoError) return true;
  m_mayWrite = false;
  report(QString::fromUtf8(UNREADABLE).arg(m_what, QDir::toNativeSeparators(m_path), file.errorString()));
  return false;
}

void CKeptFile::keepAside(const QString& why) {
  QString aside = m_path + QStringLiteral(".damaged");
  for (int i = 2; QFileInfo::exists(aside) && i <= MOST_KEPT_ASIDE; ++i)
    aside = m_path + QStringLiteral(".damaged-%1").arg(i);
  m_mayWrite = QFile::rename(m_path, aside);
  const QString file = QDir::toNativeSeparators(m_path);
  report(m_mayWrite ? QString::fromUtf8(DAMAGED).arg(m_what, file, why, QFileInfo(aside).fileName())
                    : QString::fromUtf8(DAMAGED_IN_PLACE).arg(m_what, file, why));
}

QString CKeptFile::write(const QByteArray& text) {
  QString problem;
  if (!m_mayWrite) {
    problem = QString::fromUtf8(LEFT_ALONE);
  } else if (!m_path.isEmpty() && text.size() > MOST_BYTES) {
    problem = QString::fromUtf8(TOO_LARGE).arg(MOST_BYTES);
  } else if (!m_path.isEmpty()) {
    QSaveFile file(m_path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    if (!isWritten) problem = file.errorString();
  }
  if (problem.isEmpty()) return problem;
  problem = QString::fromUtf8(NOT_WRITTEN).arg(m_what, QDir::toNativeSeparators(m_path), problem);
  utils::logError(SITE, "{0}", problem.toStdString());
  return problem;
}

void CKeptFile::report(const QString& message) {
  m_messages.append(message);
  utils::logError(SITE, "{0}", message.toStdString());
}

}  // namespace VN
