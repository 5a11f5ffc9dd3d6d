// Sizes of launches.

#include "launch/Launch.h"

#include "agent/RuntimeTable.h"

using namespace corvane;

cl_int corvane::enqueue(const Launch &launch) {
  return runtime().clEnqueueNDRangeKernel(
      launch.queue, launch.kernel, launch.workDim, launch.globalOffset,
      launch.globalSize, launch.localSize, launch.numEventsInWaitList,
      launch.eventWaitList, launch.event);
}

bool corvane::isRegular(const Launch &launch) {
  if (launch.workDim < 1 || launch.workDim > 3 || !launch.globalSize)
    return false;
  if (launch.localSize)
    for (cl_uint d = 0; d < launch.workDim; ++d)
      if (launch.localSize[d] == 0)
        return false;
  return true;
}

Sizes corvane::localCopy(const Launch &launch) {
  Sizes sizes{};
  if (launch.localSize)
    for (cl_uint d = 0; d < launch.workDim; ++d)
      sizes[d] = launch.localSize[d];
  return sizes;
}

GroupCountArgument corvane::groupCounts(const Launch &launch) {
  GroupCountArgument argument;
  if (launch.localSize)
    for (cl_uint d = 0; d < launch.workDim; ++d)
      argument.groups[d] = static_cast<std::uint32_t>(launch.globalSize[d] /
                                                      launch.localSize[d]);
  return argument;
}
