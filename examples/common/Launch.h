// Launches a kernel many times, and measures how long a launch takes.

#pragma once

#include "examples/common/Device.h"

#include <functional>

namespace examples {

/// An ND range of one or two dimensions, in work-items.
struct NDRange {
  cl_uint dimensions;
  size_t global[2];
  size_t local[2];
};

/// Puts one launch of \p kernel into the device's queue.
void enqueue(const Device &device, const Kernel &kernel, const NDRange &range);

/// What a row of launches took.
struct Timing {
  size_t launches = 0;          ///< all, the first one included
  double meanMicroseconds = 0.; ///< of one launch, the first one left out
};

/// Calls \p launchOnce with 0, 1, ... \p iterations and waits for the queue.
/// The clock starts after the first call: many runtimes compile a kernel for
/// good when it is launched for the first time.
Timing timeLaunches(const Device &device, size_t iterations,
                    const std::function<void(size_t)> &launchOnce);

} // namespace examples
