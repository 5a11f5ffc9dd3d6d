// The hook of a context's release: flushes the results first, where the user
// has asked for it.

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"
#include "session/Flush.h"

using namespace corvane;

// Unlocked: the flush takes the state away in one step, and no other thread
// finds the results from then on. Threads that still use the state keep it
// alive.
cl_int CL_API_CALL hooks::clReleaseContext(cl_context context) {
  if (flushOnReleaseContext() && agentState())
    flushAutotuneResults();
  return runtime().clReleaseContext(context);
}
