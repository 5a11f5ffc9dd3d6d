// Loads and unloads the agent, step by step.

#include "agent/entry/Exports.h"

#include "agent/AgentState.h"
#include "agent/DebugLog.h"
#include "agent/Environment.h"
#include "agent/Flags.h"
#include "agent/entry/LoadSteps.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "session/Flush.h"

using namespace corvane;

cl_int clAgent_OnLoad(AgentOperations *agent) {
  if (inForkedChild())
    return CL_SUCCESS;
  watchForks();
  readPrivileges();
  platform::rememberStandardError();
  debugLog() << "Frontend loaded\n";

  AgentGuard guard;
  setHooksInstalled(false);
  prepareOutput();
  createAgentState();
  prepareTuning();
  watchForProcessDetach();

  if (const cl_int status = installHooks(*agent); status != CL_SUCCESS)
    return status;

  setHooksInstalled(true);
  setBypassVectorizationSafetyCheck(
      lookUp(variable::bypassVectorizationSafetyCheck) != nullptr);
  return CL_SUCCESS;
}

void clAgent_OnUnload(AgentOperations *) {
  if (inForkedChild())
    return;
  endTuning(false);
  AgentGuard guard;
  flushAutotuneResults();
}
