// Launches that the agent must not see, and those that it loses after it has
// written its results.

#include "layer/Launches.h"

#include "layer/SvmKernels.h"

#include <algorithm>

using namespace corvane::layer;

// An offset counts work-items of the kernel's own range; a variant has another
// range and would work elsewhere. A work dimension beyond three is the
// runtime's to refuse, and no offset is read for it.
static bool hasOffset(cl_uint workDim, const size_t *globalOffset) {
  return globalOffset && workDim <= 3 &&
         std::any_of(globalOffset, globalOffset + workDim,
                     [](size_t offset) { return offset != 0; });
}

// Whether the application's kernel runs as it is, without the agent: no variant
// could do what the launch asks for.
static bool mustRunAlone(cl_kernel kernel, cl_uint workDim,
                         const size_t *globalOffset) {
  return usesSvm(kernel) || hasOffset(workDim, globalOffset);
}

// Launches of this thread that reached the runtime. The agent launches on the
// thread that calls it.
static thread_local unsigned launchesBelow = 0;

static cl_int CL_API_CALL launchBelow(cl_command_queue queue, cl_kernel kernel,
                                      cl_uint workDim,
                                      const size_t *globalOffset,
                                      const size_t *globalSize,
                                      const size_t *localSize,
                                      cl_uint numEvents, const cl_event *events,
                                      cl_event *event) {
  ++launchesBelow;
  return runtime().clEnqueueNDRangeKernel(queue, kernel, workDim, globalOffset,
                                          globalSize, localSize, numEvents,
                                          events, event);
}

static cl_int CL_API_CALL launchAbove(cl_command_queue queue, cl_kernel kernel,
                                      cl_uint workDim,
                                      const size_t *globalOffset,
                                      const size_t *globalSize,
                                      const size_t *localSize,
                                      cl_uint numEvents, const cl_event *events,
                                      cl_event *event) {
  const auto launch = [&](const cl_icd_dispatch &calls) {
    return calls.clEnqueueNDRangeKernel(queue, kernel, workDim, globalOffset,
                                        globalSize, localSize, numEvents,
                                        events, event);
  };
  if (mustRunAlone(kernel, workDim, globalOffset))
    return launch(runtime());
  const unsigned before = launchesBelow;
  const cl_int status = launch(agent());
  return launchesBelow != before ? status : launch(runtime());
}

void corvane::layer::watchLaunches(cl_icd_dispatch &below) {
  replace(below.clEnqueueNDRangeKernel, &launchBelow);
}

void corvane::layer::repeatLostLaunches(cl_icd_dispatch &above) {
  replace(above.clEnqueueNDRangeKernel, &launchAbove);
}
