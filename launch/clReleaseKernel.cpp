// The hook of the release of a kernel. With the last reference its variants are
// released as well.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/Hooks.h"
#include "launch/KernelRegistry.h"

using namespace corvane;

// 0 if the runtime does not say; a kernel that can be released has at least 1.
static cl_uint referenceCount(cl_kernel kernel) {
  cl_uint count = 0;
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_REFERENCE_COUNT, sizeof count, &count, nullptr);
  if (status == CL_SUCCESS)
    return count;
  reportClError(CallSite::KernelReferenceCount, status);
  return 0;
}

cl_int CL_API_CALL hooks::clReleaseKernel(cl_kernel kernel) {
  AgentGuard guard;
  const bool last = referenceCount(kernel) == 1;
  const cl_int status = runtime().clReleaseKernel(kernel);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::ReleaseKernel, status);
    return status;
  }
  if (AgentState *state = agentState(); state && last)
    dropKernel(*state, kernel);
  return status;
}
