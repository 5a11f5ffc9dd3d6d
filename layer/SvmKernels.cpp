// Kernels that work on shared virtual memory, of which the agent knows nothing.

#include "layer/SvmKernels.h"

#include "layer/KernelReferences.h"

#include <atomic>

using namespace corvane::layer;

// Most programs never use such memory, and every launch asks.
static std::atomic<bool> anyKernelDoes{false};

bool corvane::layer::usesSvm(cl_kernel kernel) {
  return anyKernelDoes && kernels().read(kernel).usesSvm;
}

static void note(cl_kernel kernel) {
  kernels().edit(kernel, [](KernelInfo &info) { info.usesSvm = true; });
  anyKernelDoes = true;
}

static cl_int CL_API_CALL setArgument(cl_kernel kernel, cl_uint index,
                                      const void *pointer) {
  const cl_int status =
      runtime().clSetKernelArgSVMPointer(kernel, index, pointer);
  if (status == CL_SUCCESS)
    note(kernel);
  return status;
}

static cl_int CL_API_CALL setExecInfo(cl_kernel kernel,
                                      cl_kernel_exec_info name, size_t size,
                                      const void *value) {
  const cl_int status =
      runtime().clSetKernelExecInfo(kernel, name, size, value);
  if (status == CL_SUCCESS)
    note(kernel);
  return status;
}

void corvane::layer::noticeSvm(cl_icd_dispatch &above) {
  replace(above.clSetKernelArgSVMPointer, &setArgument);
  replace(above.clSetKernelExecInfo, &setExecInfo);
}
