// Runs work in a process of its own, so that its memory can be measured alone.

#pragma once

#include <functional>

namespace corvane::bench {

struct ChildRun {
  double seconds = 0.0; ///< of the work alone
  double peakMiB = 0.0; ///< of the whole process
  bool succeeded = false;
};

/// Runs \p work in a child and waits for it.
ChildRun runInChild(const std::function<void()> &work);

} // namespace corvane::bench
