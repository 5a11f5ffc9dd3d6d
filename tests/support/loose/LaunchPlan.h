// A launch as it was when it was enqueued.

#pragma once

#include "tests/support/loose/Objects.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test::loose {

/// Keeps what the run needs, so that arguments set later do not change it.
class LaunchPlan {
public:
  LaunchPlan(const Kernel &kernel, cl_uint workDim, const std::size_t *global,
             const std::size_t *local);

  /// Whether all arguments are set as the kernel declares them.
  bool isComplete() const { return complete; }

  /// The row of the raw timing log that the run must have.
  std::string row(cl_ulong nanoseconds) const;

  /// Does the work.
  void run() const;

private:
  using Sizes = std::array<std::size_t, 3>;
  void expectGroupCounts(const Argument &hidden) const;

  const KernelType &type;
  SharedState &shared;
  const cl_uint dimensions;
  /// The sizes that the application has asked for, computed from those of the
  /// launch and the kernel's type.
  Sizes askedGlobal{};
  Sizes askedLocal{};
  std::vector<Ref<Buffer>> buffers;
  std::uint32_t number = 0;
  bool complete = true;
};

} // namespace corvane::test::loose
