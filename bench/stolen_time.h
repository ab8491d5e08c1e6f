#pragma once

#include <fstream>
#include <string>

#include <unistd.h>

/// Milliseconds, of all processors together, in which a virtual machine had work to do and the host let it wait; 0
/// where nobody counts them.
inline double stolenMs() {
  constexpr int FIELDS_BEFORE = 7;  // user, nice, system, idle, waiting, two kinds of interrupts
  std::ifstream file("/proc/stat");
  std::string name;
  double ticks = 0;
  file >> name;
  for (int i = 0; i <= FIELDS_BEFORE; ++i) file >> ticks;
  return file ? ticks * 1000 / static_cast<double>(sysconf(_SC_CLK_TCK)) : 0;
}
