// The hook of a launch.

#include "agent/AgentState.h"
#include "agent/DebugLog.h"
#include "agent/Flags.h"
#include "launch/AutotuneLaunch.h"
#include "launch/Hooks.h"
#include "launch/NormalLaunch.h"
#include "launch/TuneLaunch.h"

using namespace corvane;

cl_int CL_API_CALL hooks::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint numEventsInWaitList,
    const cl_event *eventWaitList, cl_event *event) {
  llvm::raw_ostream *log = lookUpDebugLog();
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
  AgentState *const state = agentState();
  if (autotuneOutput())
    return launchForAutotuning(state, launch, log);
  if (state && state->tuning)
    return launchForTuning(*state, launch, log);
  return launchNormally(state, launch, log);
}
