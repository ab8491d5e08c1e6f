#pragma once

#include "host_api.h"

namespace utils {

/// True on the thread of the application object (the GUI thread). False when there is no application.
HOST_API bool isGuiThread();

/// Debug builds stop the program when called on another thread than the GUI thread; release builds do nothing.
HOST_API void assertGui();

}  // namespace utils
