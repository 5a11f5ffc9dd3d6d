// A context's release can be the moment for the results.

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"
#include "session/Flush.h"

using namespace corvane;

// Unlocked: the flush takes the state away in one step and the results are its
// own from then on. Whoever still uses the state keeps it alive.
cl_int CL_API_CALL hooks::clReleaseContext(cl_context context) {
  if (flushOnReleaseContext() && agentState())
    flushAutotuneResults();
  return runtime().clReleaseContext(context);
}
