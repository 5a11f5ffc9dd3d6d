// The hook of the creation of one kernel.

#include "agent/AgentState.h"
#include "agent/Owned.h"
#include "agent/RuntimeTable.h"
#include "launch/Hooks.h"
#include "launch/KernelRegistry.h"

using namespace corvane;

cl_kernel CL_API_CALL hooks::clCreateKernel(cl_program program,
                                            const char *kernelName,
                                            cl_int *errcodeRet) {
  AgentGuard guard;
  AgentState *state = agentState();
  if (!state)
    return runtime().clCreateKernel(program, kernelName, errcodeRet);

  cl_int status = CL_SUCCESS;
  cl_kernel created = runtime().clCreateKernel(program, kernelName, &status);
  if (errcodeRet)
    *errcodeRet = status;
  if (status != CL_SUCCESS)
    return created;
  Owned<cl_kernel> kernel(created);
  registerKernel(*state, program, created);
  return kernel.claim();
}
