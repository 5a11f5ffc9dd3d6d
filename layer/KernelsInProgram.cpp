// The call that creates all kernels of a program at once.

#include "layer/HiddenKernels.h"
#include "layer/Programs.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane::layer;

namespace {
/// Kernels on their way to the application; released if they do not arrive.
class NewKernels {
public:
  NewKernels() = default;
  ~NewKernels() {
    for (cl_kernel kernel : kernels)
      application().clReleaseKernel(kernel);
  }
  NewKernels(const NewKernels &) = delete;
  NewKernels &operator=(const NewKernels &) = delete;

  cl_int create(cl_program program, const Names &names) {
    kernels.reserve(names.size());
    for (const std::string &name : names) {
      cl_int status = CL_SUCCESS;
      cl_kernel kernel =
          application().clCreateKernel(program, name.c_str(), &status);
      if (status != CL_SUCCESS)
        return status;
      kernels.push_back(kernel);
    }
    return CL_SUCCESS;
  }

  void giveTo(cl_kernel *array) {
    std::copy(kernels.begin(), kernels.end(), array);
    kernels.clear();
  }

private:
  std::vector<cl_kernel> kernels;
};
} // namespace

// The names of all kernels, if the runtime would create just these.
static std::optional<Names> creatableKernels(cl_program program) {
  cl_uint count = 0;
  if (!programs().has(program) ||
      runtime().clCreateKernelsInProgram(program, 0, nullptr, &count) !=
          CL_SUCCESS)
    return std::nullopt;
  std::optional<Names> names = askForNames(runtime(), program);
  return names && names->size() == count ? names : std::nullopt;
}

// The agent's own call creates kernels to count them, and fails unless the
// array has exactly the size that it wants. This one creates what the
// application has room for, variants aside, and nothing when it only counts.
//
// Counts and refusals are the runtime's own where nothing is hidden. Kernels
// are created one by one, each by the call that the agent hooks.
cl_int CL_API_CALL upper::clCreateKernelsInProgram(cl_program program,
                                                   cl_uint capacity,
                                                   cl_kernel *kernels,
                                                   cl_uint *countRet) {
  const Names hidden = hiddenKernels(program);
  const std::optional<Names> all = creatableKernels(program);
  const bool fits = all && capacity != 0 && capacity >= all->size();
  if (!all || (hidden.empty() && !(kernels && fits)))
    return runtime().clCreateKernelsInProgram(program, capacity, kernels,
                                              countRet);

  const Names names = without(*all, hidden);
  if (kernels) {
    if (capacity < names.size())
      return CL_INVALID_VALUE;
    NewKernels created;
    const cl_int status = created.create(program, names);
    if (status != CL_SUCCESS)
      return status;
    created.giveTo(kernels);
  }
  if (countRet)
    *countRet = static_cast<cl_uint>(names.size());
  return CL_SUCCESS;
}
