// A launch as the application asked for it, and its sizes as we need them.

#pragma once

#include "agent/RuntimeTable.h"

#include <CL/cl.h>

#include <algorithm>
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

/// Hands \p launch to the runtime with another kernel and other sizes, and
/// returns the runtime's status.
inline cl_int enqueueAs(const Launch &launch, cl_kernel kernel,
                        const std::size_t *globalSize,
                        const std::size_t *localSize) {
  return runtime().clEnqueueNDRangeKernel(launch.queue, kernel, launch.workDim,
                                          launch.globalOffset, globalSize,
                                          localSize, launch.numEventsInWaitList,
                                          launch.eventWaitList, launch.event);
}

/// The same as it is.
inline cl_int enqueue(const Launch &launch) {
  return enqueueAs(launch, launch.kernel, launch.globalSize, launch.localSize);
}

/// One entry a dimension; nobody looks beyond the launch's dimensions.
using Sizes = std::array<std::size_t, 3>;

/// Copies the sizes of a launch, of which there are at most three. That bound
/// makes of it a few moves rather than a call.
inline void copySizes(cl_uint workDim, const std::size_t *from, Sizes &to) {
  for (cl_uint d = 0; d < std::min(workDim, 3U); ++d)
    to[d] = from[d];
}

/// The dimensions and sizes of a launch, as far as variants look at them.
struct LaunchSizes {
  cl_uint workDim = 0;
  Sizes global{};
  Sizes local{};
};

/// The ND range with which a variant is launched.
struct VariantRange {
  Sizes global{};
  Sizes local{};

  /// Null when the runtime is to choose.
  const std::size_t *localSize() const {
    return local[0] != 0 ? local.data() : nullptr;
  }
};

/// The hidden last argument of some variants: how many work-groups the
/// application asked for in each dimension, zero where it is not known.
struct GroupCountArgument {
  std::array<std::uint32_t, 3> groups{};
  std::uint32_t padding = 0;
};
static_assert(sizeof(GroupCountArgument) == 16, "variants declare 16 bytes");

/// Whether the sizes can be computed with: one to three dimensions, a global
/// size, and no local size of zero.
inline bool isRegular(const Launch &launch) {
  if (launch.workDim < 1 || launch.workDim > 3 || !launch.globalSize)
    return false;
  if (launch.localSize)
    for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
      if (launch.localSize[d] == 0)
        return false;
  return true;
}

/// The local size of a regular launch; zeros when it has none.
inline Sizes localCopy(const Launch &launch) {
  Sizes sizes{};
  if (launch.localSize)
    copySizes(launch.workDim, launch.localSize, sizes);
  return sizes;
}

/// Whether a regular launch has these sizes.
inline bool hasSizes(const Launch &launch, const LaunchSizes &sizes) {
  if (launch.workDim != sizes.workDim)
    return false;
  for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
    if (launch.globalSize[d] != sizes.global[d] ||
        (launch.localSize ? launch.localSize[d] : 0) != sizes.local[d])
      return false;
  return true;
}

/// The work-groups of a regular launch; zeros when it has no local size.
inline GroupCountArgument groupCounts(const Launch &launch) {
  GroupCountArgument argument;
  if (launch.localSize)
    for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
      argument.groups[d] = static_cast<std::uint32_t>(launch.globalSize[d] /
                                                      launch.localSize[d]);
  return argument;
}

} // namespace corvane
