// The flags of the agent, readable.

#pragma once

#include <vector>

namespace corvane::test {

/// All values that the two write-only flags have got, in order.
struct WrittenFlags {
  std::vector<bool> hooksInstalled;
  std::vector<bool> bypass;
};
WrittenFlags &writtenFlags();

} // namespace corvane::test
