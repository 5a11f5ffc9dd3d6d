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

namespace {
struct FoundKernel {
  std::string name;
  std::unique_ptr<llvm::TransformedKernelAgent> variant; ///< null: ordinary
};
} // namespace

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

static void addToGroup(ProgramRecord &record, FoundKernel kernel) {
  if (!kernel.variant) {
    addGroup(record, kernel.name);
    return;
  }
  KernelGroup *group = findGroup(record, kernel.variant->baseName);
  if (!group)
    group = &addGroup(record, kernel.variant->baseName);
  group->variants.push_back(std::move(kernel.variant));
}

void corvane::collectKernels(AgentState &state, cl_program program) {
  std::vector<FoundKernel> kernels = findKernels(program);
  std::lock_guard<std::mutex> lock(state.programsLock);
  ProgramRecord *record = findOrAddProgram(state, program);
  if (!record)
    return;
  for (FoundKernel &kernel : kernels)
    addToGroup(*record, std::move(kernel));
}
