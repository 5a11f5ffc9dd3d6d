// Kernels that the agent keeps beside the application's and may forget.

#include "layer/KeptKernels.h"

#include "layer/KernelReferences.h"

#include <algorithm>
#include <iterator>

using namespace corvane::layer;

static cl_kernel CL_API_CALL create(cl_program program, const char *name,
                                    cl_int *errcodeRet) {
  CreatedKernels created;
  cl_kernel kernel = agent().clCreateKernel(program, name, errcodeRet);
  if (!kernel)
    return kernel;
  const std::uint64_t owner = kernels().read(kernel).number;
  std::vector<cl_kernel> kept;
  std::remove_copy(created.all.begin(), created.all.end(),
                   std::back_inserter(kept), kernel);
  for (cl_kernel each : kept)
    kernels().edit(each, [&](KernelInfo &info) { info.owner = owner; });
  kernels().edit(kernel, [&](KernelInfo &info) { info.kept.swap(kept); });
  return kernel;
}

static cl_int CL_API_CALL release(cl_kernel kernel) {
  const KernelInfo info = kernels().read(kernel);
  const cl_int status = agent().clReleaseKernel(kernel);
  // By now the handle may be another kernel's, and so may those of the others.
  if (status != CL_SUCCESS || kernels().read(kernel).number == info.number)
    return status;
  for (cl_kernel each : info.kept)
    if (kernels().erase(each, [&](const KernelInfo &found) {
          return found.owner == info.number;
        }))
      (void)runtime().clReleaseKernel(each);
  return status;
}

void corvane::layer::releaseForgottenKernels(cl_icd_dispatch &above) {
  replace(above.clCreateKernel, &create);
  replace(above.clReleaseKernel, &release);
}
