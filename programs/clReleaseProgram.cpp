// The hook of a program's release: drops one reference to its record.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"
#include "programs/ProgramRecord.h"

using namespace corvane;

cl_int CL_API_CALL hooks::clReleaseProgram(cl_program program) {
  AgentGuard guard;
  // The record counts builds, not the runtime's references; it may go first.
  if (AgentState *state = agentState())
    dropProgramReference(*state, program);

  const cl_int status = runtime().clReleaseProgram(program);
  if (status != CL_SUCCESS)
    reportClError(CallSite::ReleaseProgram, status);
  return status;
}
