// How many references to a kernel the application holds.

#include "layer/KernelReferences.h"

#include "layer/AgentsBuild.h"

#include <atomic>
#include <utility>

using namespace corvane::layer;

ObjectTable<cl_kernel, KernelInfo> &corvane::layer::kernels() {
  return neverDestroyed<ObjectTable<cl_kernel, KernelInfo>>();
}

static thread_local CreatedKernels *creating = nullptr;

CreatedKernels::CreatedKernels() { creating = this; }

CreatedKernels::~CreatedKernels() { creating = nullptr; }

static void enter(cl_kernel kernel) {
  static std::atomic<std::uint64_t> lastNumber{0};
  KernelInfo info;
  info.number = ++lastNumber;
  kernels().insert(kernel, std::move(info));
}

static cl_kernel CL_API_CALL create(cl_program program, const char *name,
                                    cl_int *errcodeRet) {
  cl_kernel kernel = runtime().clCreateKernel(program, name, errcodeRet);
  if (!kernel)
    return kernel;
  enter(kernel);
  if (creating)
    creating->all.push_back(kernel);
  return kernel;
}

static cl_int CL_API_CALL createAll(cl_program program, cl_uint room,
                                    cl_kernel *created, cl_uint *countRet) {
  forgetBuildsBeforeCollection(program);
  cl_uint count = 0;
  const cl_int status =
      runtime().clCreateKernelsInProgram(program, room, created, &count);
  if (status != CL_SUCCESS)
    return status;
  if (countRet)
    *countRet = count;
  for (cl_uint i = 0; created && i < count && i < room; ++i)
    enter(created[i]);
  return status;
}

static cl_int CL_API_CALL retain(cl_kernel kernel) {
  const cl_int status = runtime().clRetainKernel(kernel);
  if (status == CL_SUCCESS)
    kernels().retain(kernel);
  return status;
}

static cl_int CL_API_CALL release(cl_kernel kernel) {
  const Release meaning = kernels().release(kernel);
  const cl_int status = runtime().clReleaseKernel(kernel);
  if (status != CL_SUCCESS && meaning == Release::Alive)
    kernels().retain(kernel);
  else if (status != CL_SUCCESS && meaning == Release::Last)
    enter(kernel);
  return status;
}

static cl_int CL_API_CALL getInfo(cl_kernel kernel, cl_kernel_info name,
                                  size_t room, void *value, size_t *length) {
  const cl_int status =
      runtime().clGetKernelInfo(kernel, name, room, value, length);
  if (status != CL_SUCCESS || name != CL_KERNEL_REFERENCE_COUNT || !value)
    return status;
  if (const cl_uint references = kernels().references(kernel))
    *static_cast<cl_uint *>(value) = references;
  return status;
}

void corvane::layer::countKernelReferences(cl_icd_dispatch &below) {
  replace(below.clCreateKernel, &create);
  replace(below.clCreateKernelsInProgram, &createAll);
  replace(below.clRetainKernel, &retain);
  replace(below.clReleaseKernel, &release);
  replace(below.clGetKernelInfo, &getInfo);
}

void corvane::layer::answerAboutKernels(cl_icd_dispatch &above) {
  if (above.clGetKernelInfo == &getInfo)
    above.clGetKernelInfo = runtime().clGetKernelInfo;
}
