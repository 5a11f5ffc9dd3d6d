// Setting of an argument; the variants hear of it when they are launched.

#include "agent/AgentLock.h"
#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "launch/ArgMirror.h"
#include "launch/Hooks.h"
#include "launch/KernelRecord.h"

using namespace corvane;

// The record of a kernel with variants; null for all others.
static KernelRecord *mirroredKernel(cl_kernel kernel) {
  AgentState *state = agentState();
  KernelRecord *record = state ? state->kernels.find(kernel) : nullptr;
  return record && !record->variantKernels.empty() ? record : nullptr;
}

cl_int CL_API_CALL hooks::clSetKernelArg(cl_kernel kernel, cl_uint argIndex,
                                         size_t argSize, const void *argValue) {
  AgentGuard guard;
  KernelRecord *record = mirroredKernel(kernel);
  // First, because what the kernel has got its variants must be able to get.
  if (record)
    makeRoomForArgument(*record, argIndex, argSize, argValue);
  const cl_int status =
      runtime().clSetKernelArg(kernel, argIndex, argSize, argValue);
  if (record && status == CL_SUCCESS)
    recordArgument(*record, argIndex, argSize, argValue);
  return status;
}
