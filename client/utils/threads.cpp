#include "utils/threads.h"

#include <QCoreApplication>
#include <QThread>

#include <cassert>

namespace utils {

bool isGuiThread() {
  const QCoreApplication* application = QCoreApplication::instance();
  return application != nullptr && application->thread() == QThread::currentThread();
}

void assertGui() { assert(isGuiThread() && "only the GUI thread may call this"); }

}  // namespace utils
