// The calls that create, retain, release and ask about kernels.

#include "layer/Kernels.h"

#include "layer/Answer.h"
#include "layer/Builds.h"
#include "layer/CallContext.h"
#include "layer/Companion.h"
#include "layer/CompanionSettings.h"
#include "layer/LowerHooks.h"
#include "layer/UpperHooks.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

using namespace corvane;
using namespace corvane::layer;

ObjectTable<cl_kernel, KernelInfo> &corvane::layer::kernels() {
  return neverDestroyed<ObjectTable<cl_kernel, KernelInfo>>();
}

bool corvane::layer::hasVariants(cl_kernel kernel) {
  return !kernels().read(kernel).kept.empty();
}

bool corvane::layer::isGenerated(cl_kernel kernel) {
  return companionsAreWanted() && kernels().look(kernel, [](const auto &info) {
    return info.isGenerated;
  });
}

static void enter(cl_kernel kernel, CompanionRef companion = nullptr,
                  bool isGenerated = false) {
  static std::atomic<std::uint64_t> lastNumber{0};
  KernelInfo info;
  info.number = ++lastNumber;
  info.isGenerated = isGenerated;
  info.companion = std::move(companion);
  kernels().insert(kernel, std::move(info));
}

// Most programs never use such memory, and every launch asks.
static std::atomic<bool> anyKernelUsesSvm{false};

bool corvane::layer::usesSvm(cl_kernel kernel) {
  return anyKernelUsesSvm && kernels().read(kernel).usesSvm;
}

static void rememberSvm(cl_kernel kernel) {
  kernels().edit(kernel, [](KernelInfo &info) { info.usesSvm = true; });
  anyKernelUsesSvm = true;
}

// Creation.

// The application gets kernels of its program alone. Of what the agent creates
// beside them, the generated variants are the companion's.
cl_kernel CL_API_CALL lower::clCreateKernel(cl_program program,
                                            const char *name,
                                            cl_int *errcodeRet) {
  CallContext *call = CallContext::current();
  const bool isApplications = call && std::exchange(call->createsKernel, false);
  CompanionRef companion = companionOf(program);
  const bool isGenerated = !isApplications && companion && companion->has(name);
  cl_kernel kernel = runtime().clCreateKernel(
      isGenerated ? companion->parts.program : program, name, errcodeRet);
  if (!kernel)
    return kernel;
  enter(kernel, std::move(companion), isGenerated);
  if (call)
    call->createdKernels.push_back(kernel);
  return kernel;
}

// Adds the companion's kernels to those of its program, if there is room for
// all.
static void addGenerated(const Companion &companion, cl_uint capacity,
                         cl_kernel *created, cl_uint &count) {
  const auto more = static_cast<cl_uint>(companion.parts.variants.size());
  if (created && (count > capacity || more > capacity - count))
    return;
  if (!created) {
    count += more;
    return;
  }
  for (const std::string &name : companion.parts.variants) {
    cl_kernel kernel = runtime().clCreateKernel(companion.parts.program,
                                                name.c_str(), nullptr);
    if (kernel)
      created[count++] = kernel;
  }
}

cl_int CL_API_CALL lower::clCreateKernelsInProgram(cl_program program,
                                                   cl_uint capacity,
                                                   cl_kernel *created,
                                                   cl_uint *countRet) {
  forgetBuildsBeforeCollection(program);
  cl_uint count = 0;
  const cl_int status =
      runtime().clCreateKernelsInProgram(program, capacity, created, &count);
  if (status != CL_SUCCESS)
    return status;
  if (const CompanionRef companion = companionOf(program))
    addGenerated(*companion, capacity, created, count);
  if (countRet)
    *countRet = count;
  for (cl_uint i = 0; created && i < count && i < capacity; ++i)
    enter(created[i]);
  return status;
}

// The agent creates a kernel for each variant beside the application's.
cl_kernel CL_API_CALL upper::clCreateKernel(cl_program program,
                                            const char *name,
                                            cl_int *errcodeRet) {
  CallContext call;
  call.createsKernel = true;
  cl_kernel kernel = agent().clCreateKernel(program, name, errcodeRet);
  if (!kernel)
    return kernel;
  const std::uint64_t owner = kernels().read(kernel).number;
  std::vector<cl_kernel> kept;
  std::remove_copy(call.createdKernels.begin(), call.createdKernels.end(),
                   std::back_inserter(kept), kernel);
  for (cl_kernel each : kept)
    kernels().edit(each, [&](KernelInfo &info) { info.owner = owner; });
  kernels().edit(kernel, [&](KernelInfo &info) { info.kept.swap(kept); });
  return kernel;
}

// A clone has the pointers to shared virtual memory that its source has.
cl_kernel CL_API_CALL upper::clCloneKernel(cl_kernel source,
                                           cl_int *errcodeRet) {
  cl_kernel kernel = runtime().clCloneKernel(source, errcodeRet);
  if (!kernel)
    return kernel;
  enter(kernel);
  if (usesSvm(source))
    rememberSvm(kernel);
  return kernel;
}

// References.

cl_int CL_API_CALL lower::clRetainKernel(cl_kernel kernel) {
  const cl_int status = runtime().clRetainKernel(kernel);
  if (status == CL_SUCCESS)
    kernels().retain(kernel);
  return status;
}

cl_int CL_API_CALL lower::clReleaseKernel(cl_kernel kernel) {
  const Release meaning = kernels().release(kernel);
  const cl_int status = runtime().clReleaseKernel(kernel);
  if (status != CL_SUCCESS && meaning == Release::Alive)
    kernels().retain(kernel);
  else if (status != CL_SUCCESS && meaning == Release::Last)
    enter(kernel);
  return status;
}

// The agent releases the kernels that it keeps with the one that they belong
// to, unless it has written its results by then. What it leaves is released
// here: a program cannot be built again while it has kernels.
cl_int CL_API_CALL upper::clReleaseKernel(cl_kernel kernel) {
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

// Answers whether the launch that this thread is in may be tuned.
static cl_int answerTuning(const Answer &answer) {
  CallContext *call = CallContext::current();
  if (call)
    call->wasAsked = true;
  const LaunchTuning tuning =
      call && call->launch ? call->tuning : LaunchTuning::NotNow;
  return answer.give(&tuning, sizeof tuning);
}

// Questions of the agent's.
cl_int CL_API_CALL lower::clGetKernelInfo(cl_kernel kernel, cl_kernel_info name,
                                          size_t capacity, void *value,
                                          size_t *length) {
  if (name == launchTuningQuery)
    return answerTuning({capacity, value, length});
  const cl_int status =
      runtime().clGetKernelInfo(kernel, name, capacity, value, length);
  if (status != CL_SUCCESS || name != CL_KERNEL_REFERENCE_COUNT || !value)
    return status;
  if (const cl_uint references = kernels().references(kernel))
    *static_cast<cl_uint *>(value) = references;
  return status;
}

// Shared virtual memory.

cl_int CL_API_CALL upper::clSetKernelArgSVMPointer(cl_kernel kernel,
                                                   cl_uint index,
                                                   const void *pointer) {
  const cl_int status =
      runtime().clSetKernelArgSVMPointer(kernel, index, pointer);
  if (status == CL_SUCCESS)
    rememberSvm(kernel);
  return status;
}

cl_int CL_API_CALL upper::clSetKernelExecInfo(cl_kernel kernel,
                                              cl_kernel_exec_info name,
                                              size_t size, const void *value) {
  const cl_int status =
      runtime().clSetKernelExecInfo(kernel, name, size, value);
  if (status == CL_SUCCESS)
    rememberSvm(kernel);
  return status;
}
