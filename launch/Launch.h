// A launch as the application asked for it, and the sizes that follow from it.

#pragma once

#include "agent/RuntimeTable.h"
#include "results/LaunchSizes.h"

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

/// Enqueues \p launch with another kernel and other sizes, and returns the
/// runtime's status.
inline cl_int enqueueAs(const Launch &launch, cl_kernel kernel,
                        const std::size_t *globalSize,
                        const std::size_t *localSize) {
  return runtime().clEnqueueNDRangeKernel(launch.queue, kernel, launch.workDim,
                                          launch.globalOffset, globalSize,
                                          localSize, launch.numEventsInWaitList,
                                          launch.eventWaitList, launch.event);
}

/// Enqueues \p launch as the application asked for it.
inline cl_int enqueue(const Launch &launch) {
  return enqueueAs(launch, launch.kernel, launch.globalSize, launch.localSize);
}

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

/// No variant has more dimensions than three, and the arrays of a launch that
/// claims to have more are not read beyond the third.
inline bool hasTooManyDimensions(const Launch &launch) {
  return launch.workDim > 3;
}

/// The sizes of \p launch in its first three dimensions. It may be irregular:
/// have no dimensions, no global size, or a local size of zero.
inline LaunchSizes sizesOf(const Launch &launch) {
  LaunchSizes sizes;
  sizes.dimensions = launch.workDim;
  for (cl_uint d = 0; d < std::min(launch.workDim, 3U); ++d) {
    sizes.global[d] = launch.globalSize ? launch.globalSize[d] : 0;
    sizes.local[d] = launch.localSize ? launch.localSize[d] : 0;
  }
  return sizes;
}

/// Whether \p launch gives a local size of zero: no runtime accepts it.
inline bool hasZeroLocalSize(const Launch &launch) {
  const std::size_t *local = launch.localSize;
  const auto count = std::min(launch.workDim, 3U);
  return local && std::find(local, local + count, 0U) != local + count;
}

/// Whether \p launch has a global offset that is not zero. It counts work-items
/// of the kernel's own range; a variant has another.
inline bool hasOffset(const Launch &launch) {
  return launch.globalOffset &&
         std::any_of(launch.globalOffset,
                     launch.globalOffset + std::min(launch.workDim, 3U),
                     [](std::size_t offset) { return offset != 0; });
}

/// Whether the runtime refuses \p launch, or what it does with it is undefined.
inline bool isIrregular(const Launch &launch) {
  return launch.workDim == 0 || hasTooManyDimensions(launch) ||
         !launch.globalSize || hasZeroLocalSize(launch) ||
         (launch.numEventsInWaitList != 0 && !launch.eventWaitList);
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
