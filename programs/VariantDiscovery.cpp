// Creates all kernels of a program for a moment, to read their names.

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

// Nearly every program has fewer kernels.
static constexpr cl_uint usualCount = 4096;

// A runtime that claims more kernels for one program is wrong.
static constexpr cl_uint mostKernels = 1U << 20;

// How many kernels the program has; 0 if the runtime does not tell.
static cl_uint countKernels(cl_program program) {
  cl_uint count = 0;
  const cl_int status =
      runtime().clCreateKernelsInProgram(program, 0, nullptr, &count);
  return status == CL_SUCCESS ? count : 0;
}

// The first failure is reported even where a second try with a larger array
// succeeds: the report is part of the interface.
static cl_int createAll(CreatedKernels &kernels, cl_program program) {
  cl_int status = kernels.createUpTo(usualCount, program);
  if (status == CL_SUCCESS)
    return status;
  reportClError(CallSite::CollectKernels, status);
  if (status != CL_INVALID_VALUE)
    return status;
  const cl_uint count = countKernels(program);
  if (count <= usualCount || count > mostKernels)
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
