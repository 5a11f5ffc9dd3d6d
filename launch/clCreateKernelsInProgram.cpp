// The hook of the creation of all kernels of a program: the application gets
// the ordinary ones.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/Hooks.h"
#include "launch/KernelRegistry.h"
#include "programs/CreatedKernels.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace corvane;

static cl_uint countKernels(cl_program program) {
  cl_uint count = 0;
  const cl_int status =
      runtime().clCreateKernelsInProgram(program, 0, nullptr, &count);
  if (status == CL_SUCCESS)
    return count;
  reportClError(CallSite::CountKernelsInProgram, status);
  return 0;
}

namespace {
/// Kernels that the application is about to get. They and their records are
/// released if it does not get them.
class Handover {
public:
  Handover(AgentState &ofState, cl_program ofProgram, std::size_t most)
      : state(ofState), program(ofProgram) {
    kernels.reserve(most);
  }
  ~Handover() {
    for (cl_kernel kernel : kernels) {
      (void)runtime().clReleaseKernel(kernel);
      dropKernel(state, kernel);
    }
  }
  Handover(const Handover &) = delete;
  Handover &operator=(const Handover &) = delete;

  /// Registers the first of \p created and takes it over.
  void add(CreatedKernels &created, llvm::StringRef name) {
    registerKernel(state, program, created.front(), name);
    kernels.push_back(created.takeFront());
  }

  /// Writes the kernels to \p place unless that is null, and returns how many
  /// there are. The application has asked for the count before, so its array is
  /// long enough.
  cl_uint handOver(cl_kernel *place) {
    if (place)
      std::copy(kernels.begin(), kernels.end(), place);
    const auto count = static_cast<cl_uint>(kernels.size());
    kernels.clear();
    return count;
  }

private:
  AgentState &state;
  cl_program program;
  std::vector<cl_kernel> kernels;
};
} // namespace

// Registers the ordinary kernels, writes them to kernels unless that is null,
// and returns how many there are.
static cl_uint keepOrdinary(AgentState &state, cl_program program,
                            CreatedKernels &created, cl_kernel *kernels) {
  Handover ordinary(state, program, created.size());
  while (!created.empty()) {
    if (!created.front()) {
      // The runtime claims to have created more kernels than it did.
      (void)created.takeFront();
      continue;
    }
    const std::string name = readKernelName(created.front());
    if (variantOf(name))
      (void)created.releaseFront();
    else
      ordinary.add(created, name);
  }
  return ordinary.handOver(kernels);
}

cl_int CL_API_CALL hooks::clCreateKernelsInProgram(cl_program program,
                                                   cl_uint numKernels,
                                                   cl_kernel *kernels,
                                                   cl_uint *numKernelsRet) {
  AgentGuard guard;
  AgentState *state = agentState();
  if (!state) {
    const cl_int status = runtime().clCreateKernelsInProgram(
        program, numKernels, kernels, numKernelsRet);
    if (status != CL_SUCCESS)
      reportClError(CallSite::CreateKernelsInProgram, status);
    return status;
  }
  if (!state->programs.find(program))
    return CL_INVALID_PROGRAM;

  CreatedKernels created;
  const cl_int status = created.createUpTo(countKernels(program), program);
  if (status != CL_SUCCESS)
    return status;
  const cl_uint kept = keepOrdinary(*state, program, created, kernels);

  // Kept on purpose: an array for more kernels than there are is refused, one
  // for fewer is not noticed.
  if (numKernels != 0 && kept < numKernels)
    return CL_INVALID_VALUE;
  if (numKernelsRet)
    *numKernelsRet = kept;
  return status;
}
