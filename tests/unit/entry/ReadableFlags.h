// What the agent has written to its write-only flags.

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
