// A launch.

#include "agent/AgentLock.h"
#include "agent/AgentState.h"
#include "agent/Flags.h"
#include "launch/AutotuneLaunch.h"
#include "launch/Hooks.h"
#include "launch/LaunchSelection.h"

using namespace corvane;

cl_int CL_API_CALL hooks::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint numEventsInWaitList,
    const cl_event *eventWaitList, cl_event *event) {
  AgentGuard guard;
  const Launch launch{queue,
                      kernel,
                      workDim,
                      globalOffset,
                      globalSize,
                      localSize,
                      numEventsInWaitList,
                      eventWaitList,
                      event};
  if (autotuneOutput())
    return launchForAutotuning(agentState(), launch);
  return launchNormally(agentState(), launch);
}
