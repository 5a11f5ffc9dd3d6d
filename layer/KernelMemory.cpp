// Follows the arguments of kernels, while launches may be tuned.

#include "layer/KernelMemory.h"

#include "layer/Kernels.h"
#include "layer/ObjectTable.h"
#include "layer/TuningHooks.h"

#include <algorithm>
#include <cstring>
#include <map>

using namespace corvane::layer;

namespace {
struct GivenMemory {
  /// What may be a memory object: values of a handle's size, by index.
  std::map<cl_uint, cl_mem> byIndex;
};
} // namespace

static auto &kernelsWithMemory() {
  return neverDestroyed<ObjectTable<cl_kernel, GivenMemory>>();
}

TouchedMemory corvane::layer::memoryOf(cl_kernel kernel) {
  TouchedMemory memory;
  memory.anything = !kernelsWithMemory().has(kernel) || usesSvm(kernel);
  for (const auto &[index, handle] : kernelsWithMemory().read(kernel).byIndex)
    if (isMemoryObject(handle))
      memory.add(handle);
  return memory;
}

cl_kernel CL_API_CALL tuning::clCreateKernel(cl_program program,
                                             const char *name,
                                             cl_int *errcodeRet) {
  cl_kernel kernel = upperHalf().clCreateKernel(program, name, errcodeRet);
  if (kernel)
    kernelsWithMemory().insert(kernel, {});
  return kernel;
}

cl_int CL_API_CALL tuning::clCreateKernelsInProgram(cl_program program,
                                                    cl_uint capacity,
                                                    cl_kernel *created,
                                                    cl_uint *countRet) {
  cl_uint count = 0;
  const cl_int status =
      upperHalf().clCreateKernelsInProgram(program, capacity, created, &count);
  if (status != CL_SUCCESS)
    return status;
  if (countRet)
    *countRet = count;
  for (cl_uint i = 0; created && i < std::min(count, capacity); ++i)
    kernelsWithMemory().insert(created[i], {});
  return status;
}

cl_kernel CL_API_CALL tuning::clCloneKernel(cl_kernel source,
                                            cl_int *errcodeRet) {
  cl_kernel kernel = upperHalf().clCloneKernel(source, errcodeRet);
  if (kernel && kernelsWithMemory().has(source))
    kernelsWithMemory().insert(kernel, kernelsWithMemory().read(source));
  return kernel;
}

cl_int CL_API_CALL tuning::clRetainKernel(cl_kernel kernel) {
  const cl_int status = upperHalf().clRetainKernel(kernel);
  if (status == CL_SUCCESS)
    kernelsWithMemory().retain(kernel);
  return status;
}

cl_int CL_API_CALL tuning::clReleaseKernel(cl_kernel kernel) {
  (void)kernelsWithMemory().release(kernel);
  return upperHalf().clReleaseKernel(kernel);
}

cl_int CL_API_CALL tuning::clSetKernelArg(cl_kernel kernel, cl_uint index,
                                          size_t size, const void *value) {
  const cl_int status = upperHalf().clSetKernelArg(kernel, index, size, value);
  if (status != CL_SUCCESS)
    return status;
  cl_mem handle = nullptr;
  if (value && size == sizeof handle)
    std::memcpy(&handle, value, sizeof handle);
  kernelsWithMemory().edit(kernel, [&](GivenMemory &given) {
    if (handle)
      given.byIndex[index] = handle;
    else
      given.byIndex.erase(index);
  });
  return status;
}
