// Learns the memory objects of kernels from the arguments that are set.

#include "layer/KernelMemory.h"

#include "layer/ObjectTable.h"
#include "layer/SvmKernels.h"

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

static const cl_icd_dispatch *next = nullptr;

TouchedMemory corvane::layer::memoryOf(cl_kernel kernel) {
  TouchedMemory memory;
  memory.anything = !kernelsWithMemory().has(kernel) || usesSvm(kernel);
  for (const auto &[index, handle] : kernelsWithMemory().read(kernel).byIndex)
    if (isMemoryObject(handle))
      memory.add(handle);
  return memory;
}

static cl_kernel CL_API_CALL create(cl_program program, const char *name,
                                    cl_int *errcodeRet) {
  cl_kernel kernel = next->clCreateKernel(program, name, errcodeRet);
  if (kernel)
    kernelsWithMemory().insert(kernel, {});
  return kernel;
}

static cl_int CL_API_CALL createAll(cl_program program, cl_uint room,
                                    cl_kernel *created, cl_uint *countRet) {
  cl_uint count = 0;
  const cl_int status =
      next->clCreateKernelsInProgram(program, room, created, &count);
  if (status != CL_SUCCESS)
    return status;
  if (countRet)
    *countRet = count;
  for (cl_uint i = 0; created && i < std::min(count, room); ++i)
    kernelsWithMemory().insert(created[i], {});
  return status;
}

static cl_kernel CL_API_CALL clone(cl_kernel source, cl_int *errcodeRet) {
  cl_kernel kernel = next->clCloneKernel(source, errcodeRet);
  if (kernel && kernelsWithMemory().has(source))
    kernelsWithMemory().insert(kernel, kernelsWithMemory().read(source));
  return kernel;
}

static cl_int CL_API_CALL retain(cl_kernel kernel) {
  const cl_int status = next->clRetainKernel(kernel);
  if (status == CL_SUCCESS)
    kernelsWithMemory().retain(kernel);
  return status;
}

static cl_int CL_API_CALL release(cl_kernel kernel) {
  (void)kernelsWithMemory().release(kernel);
  return next->clReleaseKernel(kernel);
}

static cl_int CL_API_CALL setArgument(cl_kernel kernel, cl_uint index,
                                      size_t size, const void *value) {
  const cl_int status = next->clSetKernelArg(kernel, index, size, value);
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

void corvane::layer::followKernelMemory(cl_icd_dispatch &calls,
                                        const cl_icd_dispatch &nextCalls) {
  next = &nextCalls;
  replace(calls.clCreateKernel, &create);
  replace(calls.clCreateKernelsInProgram, &createAll);
  replace(calls.clCloneKernel, &clone);
  replace(calls.clRetainKernel, &retain);
  replace(calls.clReleaseKernel, &release);
  replace(calls.clSetKernelArg, &setArgument);
}
