// The calls that enqueue a command and differ from all others, and clFinish.

#include "layer/Enqueueing.h"
#include "layer/KernelMemory.h"
#include "layer/Kernels.h"
#include "layer/Launches.h"
#include "layer/TuningHooks.h"
#include "layer/TuningMode.h"

using namespace corvane::layer;

cl_int CL_API_CALL tuning::clEnqueueUnmapMemObject(cl_command_queue queue,
                                                   cl_mem object, void *region,
                                                   cl_uint waitCount,
                                                   const cl_event *waitList,
                                                   cl_event *event) {
  CommandRequest request;
  request.queue = queue;
  request.memory.add(object);
  Enqueueing enqueueing(std::move(request), {waitCount, waitList, event},
                        false);
  const EnqueueArguments &give = enqueueing.arguments();
  const cl_int status = enqueueing.returned(upperHalf().clEnqueueUnmapMemObject(
      queue, object, region, give.waitCount, give.waitList, give.event));
  // As a command in flight it is in the way from here on.
  if (status == CL_SUCCESS)
    rememberUnmap(object);
  return status;
}

// OpenCL 1.0's calls that order a queue.
cl_int CL_API_CALL tuning::clEnqueueMarker(cl_command_queue queue,
                                           cl_event *event) {
  CommandRequest request;
  request.queue = queue;
  request.waitsForQueue = true;
  Enqueueing enqueueing(std::move(request), {0, nullptr, event}, false);
  return enqueueing.returned(upperHalf().clEnqueueMarker(queue, event));
}

// These have no event: what they wait for holds the queue, and not they.
cl_int CL_API_CALL tuning::clEnqueueBarrier(cl_command_queue queue) {
  CommandRequest request;
  request.queue = queue;
  request.waitsForQueue = request.holdsQueue = true;
  Enqueueing enqueueing(std::move(request), {0, nullptr, nullptr}, true);
  return enqueueing.returned(upperHalf().clEnqueueBarrier(queue));
}

cl_int CL_API_CALL tuning::clEnqueueWaitForEvents(cl_command_queue queue,
                                                  cl_uint count,
                                                  const cl_event *events) {
  CommandRequest request;
  request.queue = queue;
  request.holdsQueue = true;
  Enqueueing enqueueing(std::move(request), {count, events, nullptr}, true);
  return enqueueing.returned(
      upperHalf().clEnqueueWaitForEvents(queue, count, events));
}

// A kernel without variants runs as it is anyway, and nothing is saved for it.
// An agent that does not ask must not see a launch that may not be tuned; past
// the agent the application's kernel runs as it would alone.
cl_int CL_API_CALL tuning::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event) {
  Launch launch{queue,     kernel,    workDim,  globalOffset, globalSize,
                localSize, waitCount, waitList, event};
  CallContext call;
  call.launch = &launch;
  const bool alone = mustRunAlone(launch);
  const bool wantsTuning = !alone && hasVariants(kernel);
  CommandRequest request;
  request.queue = queue;
  request.memory = memoryOf(kernel);
  Enqueueing enqueueing(std::move(request), {waitCount, waitList, event}, false,
                        wantsTuning ? &call : nullptr);
  launch.waitCount = enqueueing.arguments().waitCount;
  launch.waitList = enqueueing.arguments().waitList;
  launch.event = enqueueing.arguments().event;
  if (alone)
    call.tuning = LaunchTuning::KernelOnly;
  if (tuningMode() == TuningMode::Autotune &&
      (alone || (wantsTuning && call.tuning != LaunchTuning::Allowed)))
    return enqueueing.returned(launch.enqueueThrough(runtime()));
  return enqueueing.returned(launchThroughAgent(launch, call));
}

cl_int CL_API_CALL tuning::clFinish(cl_command_queue queue) {
  const std::vector<CommandRef> commands = commandsInFlight().commandsOf(queue);
  const cl_int status = upperHalf().clFinish(queue);
  if (status == CL_SUCCESS)
    commandsInFlight().areOver(commands);
  return status;
}
