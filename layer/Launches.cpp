// Launches that the agent loses after it has written its results.

#include "layer/Launches.h"

#include "layer/SvmKernels.h"

using namespace corvane::layer;

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
  if (usesSvm(kernel))
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
