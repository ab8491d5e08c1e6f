#pragma once

// The export macro of the module's entry classes; the module's own build defines PANELS_BUILD.

#if defined(_WIN32)
#  if defined(PANELS_BUILD)
#    define PANELS_API __declspec(dllexport)
#  else
#    define PANELS_API __declspec(dllimport)
#  endif
#else
#  define PANELS_API __attribute__((visibility("default")))
#endif
