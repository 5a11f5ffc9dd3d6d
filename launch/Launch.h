// A launch as the application asked for it, and its sizes as we need them.

#pragma once

#include <CL/cl.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvane {

/// The arguments of clEnqueueNDRangeKernel; everything is borrowed.
struct Launch {
  cl_command_queue queue;
  cl_kernel kernel;
  cl_uint workDim;
  const std::size_t *globalOffset; ///< may be null
  const std::size_t *globalSize;
  const std::size_t *localSize; ///< null: the runtime chooses
  cl_uint numEventsInWaitList;
  const cl_event *eventWaitList;
  cl_event *event; ///< null: not wanted
};

/// Hands \p launch to the runtime as it is and returns the runtime's status.
cl_int enqueue(const Launch &launch);

/// One entry a dimension; what lies beyond the launch's dimensions is zero.
using Sizes = std::array<std::size_t, 3>;

/// The hidden last argument of some variants: how many work-groups the
/// application asked for in each dimension, zero where it is not known.
struct GroupCountArgument {
  std::array<std::uint32_t, 3> groups{};
  std::uint32_t padding = 0;
};
static_assert(sizeof(GroupCountArgument) == 16, "variants declare 16 bytes");

/// Whether the sizes can be computed with: one to three dimensions, a global
/// size, and no local size of zero.
bool isRegular(const Launch &launch);

/// The local size of a regular launch; zeros when it has none.
Sizes localCopy(const Launch &launch);

/// The work-groups of a regular launch; zeros when it has no local size.
GroupCountArgument groupCounts(const Launch &launch);

} // namespace corvane
