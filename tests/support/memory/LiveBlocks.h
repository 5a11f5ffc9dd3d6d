// The blocks of memory that the agent has got and that have not been freed.

#pragma once

#include <cstddef>

namespace corvane::test {

/// A set that itself never allocates: it is used from inside the allocator. Any
/// thread.
class LiveBlocks {
public:
  static void add(void *memory, std::size_t size);
  /// Does nothing for a block that is not in the set.
  static void remove(void *memory);

  static std::size_t count();
  static std::size_t bytes();
};

} // namespace corvane::test
