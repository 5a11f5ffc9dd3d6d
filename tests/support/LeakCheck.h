// Turns the search for leaks at the end of a process off.

#pragma once

#include <atomic>

namespace corvane::test {

/// Set it in a process that ends, or is forked, in the middle of what its other
/// threads do: what those hold looks like leaks to the address sanitizer.
inline std::atomic<bool> leaksAreIgnored{false};

} // namespace corvane::test
