// Setting of an argument; the variants hear of it when they are launched.

#include "agent/AgentLock.h"
#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "launch/ArgMirror.h"
#include "launch/Hooks.h"
#include "launch/KernelRecord.h"

using namespace corvane;

cl_int CL_API_CALL hooks::clSetKernelArg(cl_kernel kernel, cl_uint argIndex,
                                         size_t argSize, const void *argValue) {
  AgentGuard guard;
  const cl_int status =
      runtime().clSetKernelArg(kernel, argIndex, argSize, argValue);
  AgentState *state = agentState();
  if (!state || status != CL_SUCCESS)
    return status;
  KernelRecord *record = state->kernels.find(kernel);
  if (record && !record->variantKernels.empty())
    recordArgument(*record, argIndex, argSize, argValue);
  return status;
}
