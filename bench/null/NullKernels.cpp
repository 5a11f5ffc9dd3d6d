// Kernels that have a name and take any argument.

#include "bench/null/NullObjects.h"
#include "bench/null/NullRuntime.h"

using namespace corvane;
using namespace corvane::bench;

static cl_kernel makeKernel(cl_program program, cl_uint place) {
  const bool isVariant =
      program->names[place].find("_coarsed_") != std::string::npos;
  return new _cl_kernel{program, place, isVariant ? 3U : 2U};
}

static cl_kernel CL_API_CALL createKernel(cl_program program, const char *name,
                                          cl_int *status) {
  const auto found = program->places.find(name);
  if (found == program->places.end()) {
    *status = CL_INVALID_KERNEL_NAME;
    return nullptr;
  }
  *status = CL_SUCCESS;
  return makeKernel(program, found->second);
}

static cl_int CL_API_CALL createKernels(cl_program program, cl_uint capacity,
                                        cl_kernel *kernels, cl_uint *count) {
  const auto total = static_cast<cl_uint>(program->names.size());
  if (kernels && capacity < total)
    return CL_INVALID_VALUE;
  for (cl_uint i = 0; kernels && i < total; ++i)
    kernels[i] = makeKernel(program, i);
  if (count)
    *count = total;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL getKernelInfo(cl_kernel kernel, cl_kernel_info name,
                                        std::size_t capacity, void *value,
                                        std::size_t *sizeRet) {
  switch (name) {
  case CL_KERNEL_FUNCTION_NAME: {
    const std::string &text = kernel->program->names[kernel->place];
    return null::answer(text.c_str(), text.size() + 1, capacity, value,
                        sizeRet);
  }
  case CL_KERNEL_NUM_ARGS:
    return null::answer(&kernel->arguments, sizeof(cl_uint), capacity, value,
                        sizeRet);
  case CL_KERNEL_REFERENCE_COUNT:
    return null::answer(&kernel->references, sizeof(cl_uint), capacity, value,
                        sizeRet);
  default:
    return CL_INVALID_VALUE;
  }
}

static cl_int CL_API_CALL releaseKernel(cl_kernel kernel) {
  if (--kernel->references == 0)
    delete kernel;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setKernelArg(cl_kernel, cl_uint, std::size_t,
                                       const void *) {
  return CL_SUCCESS;
}

void null::addKernels(DispatchTable &table) {
  table.clCreateKernel = createKernel;
  table.clCreateKernelsInProgram = createKernels;
  table.clGetKernelInfo = getKernelInfo;
  table.clReleaseKernel = releaseKernel;
  table.clSetKernelArg = setKernelArg;
}
