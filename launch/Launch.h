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
  const std::size_t *globalSize;   ///< null: left out
  const std::size_t *localSize;    ///< null: the runtime chooses
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

/// The dimensions and sizes of a launch, as variants look at them: a size that
/// the application does not give is zero.
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

/// Whether there is room for all dimensions of \p launch. No variant has more,
/// and the arrays of a launch that claims more are not read beyond the third.
inline bool fitsSizes(const Launch &launch) { return launch.workDim <= 3; }

/// Whether \p launch gives a local size of zero: no runtime accepts it.
inline bool hasZeroLocalSize(const Launch &launch) {
  if (launch.localSize)
    for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
      if (launch.localSize[d] == 0)
        return true;
  return false;
}

/// The first three dimensions of \p launch at most, which may be irregular.
inline LaunchSizes sizesOf(const Launch &launch) {
  LaunchSizes sizes;
  sizes.workDim = launch.workDim;
  if (launch.globalSize)
    copySizes(launch.workDim, launch.globalSize, sizes.global);
  if (launch.localSize)
    copySizes(launch.workDim, launch.localSize, sizes.local);
  return sizes;
}

/// Whether \p launch has these sizes.
inline bool hasSizes(const Launch &launch, const LaunchSizes &sizes) {
  if (launch.workDim != sizes.workDim)
    return false;
  for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
    if ((launch.globalSize ? launch.globalSize[d] : 0) != sizes.global[d] ||
        (launch.localSize ? launch.localSize[d] : 0) != sizes.local[d])
      return false;
  return true;
}

/// The work-groups of \p launch; zero where the sizes do not tell.
inline GroupCountArgument groupCounts(const Launch &launch) {
  GroupCountArgument argument;
  if (!launch.globalSize || !launch.localSize)
    return argument;
  for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d)
    if (launch.localSize[d] != 0)
      argument.groups[d] = static_cast<std::uint32_t>(launch.globalSize[d] /
                                                      launch.localSize[d]);
  return argument;
}

} // namespace corvane
