#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>
#include <vector>

inline double msSince(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

/// Milliseconds that the call takes.
template <class F>
double msOf(F run) {
  const auto begin = std::chrono::steady_clock::now();
  run();
  return msSince(begin);
}

/// The value that so great a part of all is not above; 0 of none.
inline double percentile(std::vector<double> values, double part) {
  if (values.empty()) return 0;
  const auto place = static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * part);
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<std::size_t>(place)];
}

inline double median(std::vector<double> values) { return percentile(std::move(values), 0.5); }

inline double largest(const std::vector<double>& values) {
  return values.empty() ? 0 : *std::max_element(values.begin(), values.end());
}
