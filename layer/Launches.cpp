// The call that launches a kernel.

#include "layer/Launches.h"

#include "layer/Kernels.h"
#include "layer/LowerHooks.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane::layer;

cl_int Launch::enqueueThrough(const cl_icd_dispatch &calls) const {
  return calls.clEnqueueNDRangeKernel(queue, kernel, workDim, globalOffset,
                                      globalSize, localSize, waitCount,
                                      waitList, event);
}

// An offset counts work-items of the kernel's own range; a variant has another
// range and would work elsewhere. A work dimension beyond three is the
// runtime's to refuse, and no offset is read for it.
static bool hasOffset(const Launch &launch) {
  const size_t *offset = launch.globalOffset;
  return offset && launch.workDim <= 3 &&
         std::any_of(offset, offset + launch.workDim,
                     [](size_t each) { return each != 0; });
}

bool corvane::layer::mustRunAlone(const Launch &launch) {
  return usesSvm(launch.kernel) || hasOffset(launch);
}

cl_int corvane::layer::launchThroughAgent(const Launch &launch,
                                          CallContext &call) {
  const cl_int status = launch.enqueueThrough(agent());
  return call.hasLaunched ? status : launch.enqueueThrough(runtime());
}

cl_int CL_API_CALL upper::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event) {
  const Launch launch{queue,     kernel,    workDim,  globalOffset, globalSize,
                      localSize, waitCount, waitList, event};
  if (mustRunAlone(launch))
    return launch.enqueueThrough(runtime());
  CallContext call;
  return launchThroughAgent(launch, call);
}

cl_int CL_API_CALL lower::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event) {
  if (CallContext *call = CallContext::current())
    call->hasLaunched = true;
  return Launch{queue,     kernel,    workDim,  globalOffset, globalSize,
                localSize, waitCount, waitList, event}
      .enqueueThrough(runtime());
}
