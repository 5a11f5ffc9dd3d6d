// The hook of a setting of an argument.

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "launch/Hooks.h"
#include "launch/KernelRecord.h"

using namespace corvane;

// The arguments of a kernel with variants; null for all others.
static RecordedArguments *argumentsOf(cl_kernel kernel) {
  AgentState *state = agentState();
  KernelRecord *record = state ? state->kernels.find(kernel) : nullptr;
  return record && !record->variants.empty() ? &record->arguments : nullptr;
}

cl_int CL_API_CALL hooks::clSetKernelArg(cl_kernel kernel, cl_uint argIndex,
                                         size_t argSize, const void *argValue) {
  AgentGuard guard;
  RecordedArguments *arguments = argumentsOf(kernel);
  // First, because the variants must be able to get what the kernel has got.
  if (arguments)
    arguments->reserve(argIndex, argSize, argValue);
  const cl_int status =
      runtime().clSetKernelArg(kernel, argIndex, argSize, argValue);
  if (arguments && status == CL_SUCCESS)
    arguments->record(argIndex, argSize, argValue);
  return status;
}
