// Makes and drops the records of the application's kernels.

#include "launch/KernelRegistry.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/KernelRecord.h"
#include "programs/KernelName.h"
#include "programs/ProgramRecord.h"

#include <utility>

using namespace corvane;

using KernelTable = RecordTable<cl_kernel, KernelRecord>;

// Null after a failure, which is reported.
static cl_kernel createVariant(cl_program program,
                               const llvm::TransformedKernelAgent &variant) {
  cl_int status = CL_SUCCESS;
  cl_kernel kernel =
      runtime().clCreateKernel(program, variant.kernelName().c_str(), &status);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::CreateVariant, status);
    return nullptr;
  }
  return kernel;
}

static void addVariant(KernelRecord &record,
                       const llvm::TransformedKernelAgent &variant) {
  auto copy = std::make_unique<llvm::TransformedKernelAgent>(variant);
  cl_kernel kernel = createVariant(record.program, variant);
  if (!KernelTable::canBeKey(kernel))
    return;
  record.variantKernels.try_emplace(kernel, std::move(copy));
  record.argSyncCounts.try_emplace(kernel, 0);
}

void corvane::registerKernel(AgentState &state, cl_program program,
                             cl_kernel kernel) {
  if (state.programs.find(program))
    registerKernel(state, program, kernel, readKernelName(kernel));
}

void corvane::registerKernel(AgentState &state, cl_program program,
                             cl_kernel kernel, std::string name) {
  const ProgramRecord *programRecord = state.programs.find(program);
  if (!programRecord)
    return;
  const KernelGroup *group = findGroup(*programRecord, name);
  if (!group || !KernelTable::canBeKey(kernel)) {
    // Not one of the program's ordinary kernels: it has an entry, but a null
    // one.
    state.kernels.append(kernel, nullptr);
    return;
  }

  KernelRecord *record = state.kernels.append(
      kernel, std::make_unique<KernelRecord>(program, kernel, std::move(name)));
  for (const auto &variant : group->variants)
    addVariant(*record, *variant);
}

void corvane::dropKernel(AgentState &state, cl_kernel kernel) {
  const std::unique_ptr<KernelRecord> record = state.kernels.remove(kernel);
  if (!record)
    return;
  for (const auto &variant : record->variantKernels)
    if (variant.first)
      (void)runtime().clReleaseKernel(variant.first);
}
