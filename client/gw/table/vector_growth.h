#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace GW {

/// Room for `size` elements. Grows by half: tables stay for hours at the size they once reached, and doubling would
/// leave more of it unused.
template <class T>
void growFor(std::vector<T>& elements, std::size_t size) {
  if (size > elements.capacity()) elements.reserve(std::max(size, elements.capacity() + elements.capacity() / 2));
}

/// Bytes of an array, used or not, without what its elements hold elsewhere.
template <class T>
std::size_t heldBytes(const std::vector<T>& elements) {
  return elements.capacity() * sizeof(T);
}

}  // namespace GW
