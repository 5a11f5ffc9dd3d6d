// Allocates an array as long as the runtime says, which may be a lie.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace corvane {

/// \p count zeroed elements, or null when there is no memory for them. The
/// system provides memory only where it is written, so a false length costs
/// nothing.
struct FreeMemory {
  void operator()(void *memory) const { std::free(memory); }
};

template <typename Element>
using ZeroedArray = std::unique_ptr<Element[], FreeMemory>;

template <typename Element>
ZeroedArray<Element> allocateZeroed(std::size_t count) {
  return ZeroedArray<Element>(
      static_cast<Element *>(std::calloc(count, sizeof(Element))));
}

} // namespace corvane
