// The folder in which file dialogs begin.

#include "utils/threads.h"
#include "vn/CFileClient.h"
#include "vn/CUserConfig.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace VN {

QString getOpenFileDir() {
  utils::assertGui();
  const QString folder = getUserConfig()->fileFolder();
  if (!folder.isEmpty() && QDir(folder).exists()) return folder;
  return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

void setOpenFileDir(const QString& path) {
  utils::assertGui();
  if (!path.isEmpty()) getUserConfig()->setFileFolder(QFileInfo(path).absolutePath());
}

}  // namespace VN
