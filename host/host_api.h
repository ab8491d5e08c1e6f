#pragma once

// The export macro of every contract class with out-of-line members, and the version of the contract.
// A client vendor compiles these headers into a shared library of its own; that build defines HOST_BUILD.

#if defined(_WIN32)
#  if defined(HOST_BUILD)
#    define HOST_API __declspec(dllexport)
#  else
#    define HOST_API __declspec(dllimport)
#  endif
#else
#  define HOST_API __attribute__((visibility("default")))
#endif

namespace host {

/// Version of the contract that these headers describe. Raised whenever a declaration in `host/` changes.
constexpr int CONTRACT_VERSION = 1;

/// Version that the loaded client library was compiled with. Any thread. A panel compares it with CONTRACT_VERSION
/// when it is constructed, and stays empty when they differ.
HOST_API int contractVersion();

}  // namespace host
