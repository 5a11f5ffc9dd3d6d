// Has variants created with their kernel, and released with it.

#include "launch/KernelRegistry.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/KernelRecord.h"
#include "launch/MapOrder.h"
#include "programs/CreatedKernels.h"
#include "programs/ProgramRecord.h"

#include "llvm/ADT/ScopeExit.h"

using namespace corvane;

// Null after a failure, which is reported.
static cl_kernel createVariant(cl_program program,
                               const std::string &kernelName) {
  cl_int status = CL_SUCCESS;
  cl_kernel kernel =
      runtime().clCreateKernel(program, kernelName.c_str(), &status);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::CreateVariant, status);
    return nullptr;
  }
  return kernel;
}

// What needs memory comes first: a variant kernel that is not in the record
// would never be released.
static void createVariants(KernelRecord &record) {
  record.variants.reserve(record.prototype->variants.size());
  for (const auto &variant : record.prototype->variants) {
    cl_kernel kernel = createVariant(record.program, variant->kernelName);
    record.variants.push_back({kernel, variant.get()});
  }
  putInMapOrder(record.variants);
}

static void releaseVariants(const KernelRecord &record) {
  for (const VariantKernel &variant : record.variants)
    if (variant.kernel)
      (void)runtime().clReleaseKernel(variant.kernel);
}

void corvane::registerKernel(AgentState &state, cl_program program,
                             cl_kernel kernel) {
  if (state.programs.find(program))
    registerKernel(state, program, kernel, readKernelName(kernel));
}

void corvane::registerKernel(AgentState &state, cl_program program,
                             cl_kernel kernel, llvm::StringRef name) {
  const ProgramRecord *programRecord = state.programs.find(program);
  if (!programRecord)
    return;
  KernelGroup *group = findGroup(*programRecord, name);
  if (!group) {
    // Not one of the program's ordinary kernels: it has an entry, but a null
    // one.
    state.kernels.append(kernel, nullptr);
    return;
  }

  auto record =
      std::make_unique<KernelRecord>(program, kernel, prototypeOf(*group));
  auto dropVariants = llvm::make_scope_exit([&] { releaseVariants(*record); });
  createVariants(*record);
  state.kernels.append(kernel, std::move(record));
  dropVariants.release();
}

void corvane::dropKernel(AgentState &state, cl_kernel kernel) {
  if (const auto record = state.kernels.remove(kernel))
    releaseVariants(*record);
}
