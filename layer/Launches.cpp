// The call that launches a kernel, and the user events of tuned launches.

#include "layer/Launches.h"

#include "layer/Kernels.h"
#include "layer/LowerHooks.h"
#include "layer/TuningMode.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::layer;

cl_int Launch::enqueueThrough(const cl_icd_dispatch &calls) const {
  return calls.clEnqueueNDRangeKernel(queue, kernel, workDim, globalOffset,
                                      globalSize, localSize, waitCount,
                                      waitList, event);
}

void Launch::takeWork(const Launch &other) {
  kernel = other.kernel;
  workDim = other.workDim;
  globalOffset = other.globalOffset;
  globalSize = other.globalSize;
  localSize = other.localSize;
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
  call.isWithAgent = true;
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
  call.launch = &launch;
  return launchThroughAgent(launch, call);
}

// Whether the application's kernel takes the place of what the agent launches:
// where nothing else may run, and where an agent that could not begin to tune
// chooses a variant that was not measured. Such an agent does not ask.
static bool mustBeReplaced(const CallContext &call, cl_kernel kernel) {
  if (call.tuning == LaunchTuning::KernelOnly)
    return true;
  return tuningMode() == TuningMode::Tune && !call.wasAsked &&
         isGenerated(kernel);
}

// The application knows nothing of generated variants: a failure of one must
// not become its own.
cl_int CL_API_CALL lower::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event) {
  Launch launch{queue,     kernel,    workDim,  globalOffset, globalSize,
                localSize, waitCount, waitList, event};
  CallContext *call = CallContext::current();
  if (!call)
    return launch.enqueueThrough(runtime());
  call->hasLaunched = true;
  if (!call->launch)
    return launch.enqueueThrough(runtime());
  if (mustBeReplaced(*call, kernel))
    launch.takeWork(*call->launch);
  const cl_int status = launch.enqueueThrough(runtime());
  if (status == CL_SUCCESS || !isGenerated(launch.kernel))
    return status;
  launch.takeWork(*call->launch);
  return launch.enqueueThrough(runtime());
}

cl_event CL_API_CALL lower::clCreateUserEvent(cl_context context,
                                              cl_int *errcodeRet) {
  cl_event event = runtime().clCreateUserEvent(context, errcodeRet);
  CallContext *call = CallContext::current();
  if (call && event)
    call->hasUserEvent = true;
  return event;
}
