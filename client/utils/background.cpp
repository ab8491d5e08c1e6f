#include "utils/background.h"

#ifdef __linux__
#  include <sys/resource.h>
#  include <sys/syscall.h>
#  include <unistd.h>
#endif

namespace utils {

namespace {

constexpr int NICENESS = 5;  ///< about a third of the time that the GUI thread gets, while both have work

}  // namespace

void workInBackground() {
#ifdef __linux__
  // The number is a thread's own here, whatever POSIX says.
  thread_local const bool isAsked = [] {
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), NICENESS);
    return true;
  }();
  static_cast<void>(isAsked);
#endif
}

}  // namespace utils
