// Has the runtime create all kernels of a program, for a look at their names.

#include "programs/VariantDiscovery.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "programs/CreatedKernels.h"
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

// Room for the kernels of nearly every program.
static constexpr cl_uint usualRoom = 4096;

// A runtime that claims more kernels for one program is wrong.
static constexpr cl_uint mostRoom = 1U << 20;

// 0 if the runtime does not tell.
static cl_uint countKernels(cl_program program) {
  cl_uint count = 0;
  const cl_int status =
      runtime().clCreateKernelsInProgram(program, 0, nullptr, &count);
  return status == CL_SUCCESS ? count : 0;
}

// The first failure is reported although more room may help: the report is part
// of the interface.
static cl_int createAll(CreatedKernels &kernels, cl_program program) {
  cl_int status = kernels.createUpTo(usualRoom, program);
  if (status == CL_SUCCESS)
    return status;
  reportClError(CallSite::CollectKernels, status);
  if (status != CL_INVALID_VALUE)
    return status;
  const cl_uint count = countKernels(program);
  if (count <= usualRoom || count > mostRoom)
    return status;
  status = kernels.createUpTo(count, program);
  if (status != CL_SUCCESS)
    reportClError(CallSite::CollectKernels, status);
  return status;
}

static std::vector<FoundKernel> findKernels(cl_program program) {
  CreatedKernels kernels;
  (void)createAll(kernels, program);

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
  addKernels(state, program, findKernels(program));
}
