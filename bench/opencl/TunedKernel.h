// A kernel with three variants and two buffers that takes as long as asked for.

#pragma once

#include "bench/opencl/Session.h"

#include <vector>

namespace corvane::bench {

/// How long one launch of all versions took.
struct Runs {
  double wallSeconds = 0.0;
  double kernelSeconds = 0.0; ///< by the profiling counters, of all versions
};

class TunedKernel {
public:
  /// A run of the ordinary kernel takes about \p seconds.
  explicit TunedKernel(double seconds);

  /// Launches the kernel once and waits.
  void launch() const;

  /// Does what the agent does for a launch: runs each variant between a save
  /// and a restore of the buffers, and the kernel last.
  Runs launchByHand();

  static constexpr std::size_t variantCount = 3;
  static constexpr std::size_t bufferCount = 2;
  static constexpr std::size_t bufferSize = std::size_t{256} << 10;

  /// How long plain copies of as many bytes take as a launch saves and
  /// restores.
  double copySeconds();

private:
  Event enqueue(const Kernel &kernel, std::size_t items,
                const Event &after) const;
  Event transfer(bool save, std::size_t buffer, const Event &after);
  void calibrate(double seconds);
  void setRounds(cl_uint rounds) const;

  Session session;
  std::vector<Kernel> versions; ///< the ordinary kernel last
  std::vector<Buffer> buffers;
  std::vector<std::vector<char>> hostCopies;
};

} // namespace corvane::bench
