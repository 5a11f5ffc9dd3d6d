// A launch as it was when it was enqueued.

#pragma once

#include "tests/support/loose/Objects.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test::loose {

/// Keeps what the run needs: whoever sets arguments later changes nothing.
class LaunchPlan {
public:
  LaunchPlan(const Kernel &kernel, cl_uint workDim, const std::size_t *global,
             const std::size_t *local);

  /// Whether all arguments are set as the kernel declares them.
  bool isComplete() const { return complete; }

  /// What the raw timing log has to say of the run.
  std::string row(cl_ulong nanoseconds) const;

  /// Does the work.
  void run() const;

private:
  using Sizes = std::array<std::size_t, 3>;
  void expectGroupCounts(const Argument &hidden) const;

  const KernelType &type;
  Board &board;
  const cl_uint dimensions;
  /// The sizes that the application has asked for: the type tells what a
  /// variant made of them.
  Sizes askedGlobal{};
  Sizes askedLocal{};
  std::vector<Ref<Buffer>> buffers;
  std::uint32_t number = 0;
  bool complete = true;
};

} // namespace corvane::test::loose
