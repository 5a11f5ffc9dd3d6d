// Enqueues launches, and takes the mean of their times by the clock.

#include "examples/common/Launch.h"
#include "examples/common/Failure.h"

#include <chrono>

using namespace examples;

void examples::enqueue(const Device &device, const Kernel &kernel,
                       const NDRange &range) {
  check(clEnqueueNDRangeKernel(device.queue(), kernel.get(), range.dimensions,
                               nullptr, range.global, range.local, 0, nullptr,
                               nullptr),
        "clEnqueueNDRangeKernel");
}

Timing examples::timeLaunches(const Device &device, size_t iterations,
                              const std::function<void(size_t)> &launchOnce) {
  using Clock = std::chrono::steady_clock;
  launchOnce(0);
  check(clFinish(device.queue()), "clFinish");

  const Clock::time_point start = Clock::now();
  for (size_t i = 1; i <= iterations; ++i)
    launchOnce(i);
  check(clFinish(device.queue()), "clFinish");
  const std::chrono::duration<double, std::micro> spent = Clock::now() - start;
  return {iterations + 1, spent.count() / static_cast<double>(iterations)};
}
