// Memory for an array whose length the runtime claims.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace corvane {

/// \p count zeroed elements, or null when there is no room for them. The pages
/// are only taken when they are written, so a false claim costs nothing.
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
