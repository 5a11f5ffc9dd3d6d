// Has the runtime create all kernels of a program, for a look at their names.

#include "programs/VariantDiscovery.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "programs/CreatedKernels.h"
#include "programs/KernelName.h"
#include "programs/ProgramRecord.h"

#include <string>
#include <utility>
#include <vector>

using namespace corvane;

static FoundKernel identify(cl_kernel kernel) {
  FoundKernel found;
  found.name = readKernelName(kernel);
  found.variant = variantOf(found.name);
  return found;
}

static std::vector<FoundKernel> findKernels(cl_program program) {
  CreatedKernels kernels;
  const cl_int status = kernels.createUpTo(4096, program);
  if (status != CL_SUCCESS)
    reportClError(CallSite::CollectKernels, status);

  std::vector<FoundKernel> found;
  while (!kernels.empty()) {
    if (!kernels.front()) {
      // The runtime claims more kernels than it made.
      (void)kernels.takeFront();
      continue;
    }
    found.push_back(identify(kernels.front()));
    if (const cl_int released = kernels.releaseFront())
      reportClError(CallSite::ReleaseCollectedKernel, released);
  }
  return found;
}

void corvane::collectKernels(AgentState &state, cl_program program) {
  std::vector<FoundKernel> kernels = findKernels(program);
  if (decltype(state.programs)::canBeKey(program))
    addKernels(state, program, std::move(kernels));
}
