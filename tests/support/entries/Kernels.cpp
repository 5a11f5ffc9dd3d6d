// Kernels of the scripted runtime: created, retained and released.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

#include <algorithm>

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

static cl_kernel makeKernel(World &world,
                            const std::shared_ptr<Program> &program,
                            const KernelScript &script) {
  auto kernel = std::make_shared<Kernel>();
  kernel->script = script;
  kernel->program = program;
  kernel->arguments.resize(script.argumentCount);
  return world.objects.add<cl_kernel>(kernel, script.name);
}

static cl_kernel createByName(World &world, cl_program handle,
                              const std::string &name, cl_int &status) {
  Lock guard(world.lock);
  const auto program = world.objects.find(handle);
  status = !program             ? CL_INVALID_PROGRAM
           : !program->latest() ? CL_INVALID_PROGRAM_EXECUTABLE
                                : CL_INVALID_KERNEL_NAME;
  if (status != CL_INVALID_KERNEL_NAME)
    return nullptr;
  for (const KernelScript &script : program->latest()->kernels) {
    if (script.name != name)
      continue;
    status = CL_SUCCESS;
    return makeKernel(world, program, script);
  }
  return nullptr;
}

cl_kernel CL_API_CALL fake::clCreateKernel(cl_program program, const char *name,
                                           cl_int *status) {
  World &world = World::current("clCreateKernel");
  if (const auto failure =
          world.begin("clCreateKernel",
                      {world.say(program), quoted(name), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  cl_int result = CL_INVALID_VALUE;
  cl_kernel kernel =
      name ? createByName(world, program, name, result) : nullptr;
  setStatus(status, result);
  return kernel;
}

static cl_int createAll(World &world, cl_program handle, cl_uint capacity,
                        cl_kernel *kernels, cl_uint *count) {
  Lock guard(world.lock);
  const auto program = world.objects.find(handle);
  if (!program)
    return CL_INVALID_PROGRAM;
  if (!program->latest())
    return CL_INVALID_PROGRAM_EXECUTABLE;
  const std::vector<KernelScript> &scripts = program->latest()->kernels;
  if (kernels && capacity < scripts.size())
    return CL_INVALID_VALUE;
  if (kernels)
    std::transform(scripts.begin(), scripts.end(), kernels,
                   [&](const KernelScript &script) {
                     return makeKernel(world, program, script);
                   });
  if (count)
    *count =
        world.lies.kernelCount.value_or(static_cast<cl_uint>(scripts.size()));
  return CL_SUCCESS;
}

cl_int CL_API_CALL fake::clCreateKernelsInProgram(cl_program program,
                                                  cl_uint capacity,
                                                  cl_kernel *kernels,
                                                  cl_uint *count) {
  World &world = World::current("clCreateKernelsInProgram");
  if (const auto failure =
          world.begin("clCreateKernelsInProgram",
                      {world.say(program), std::to_string(capacity),
                       place(kernels), place(count)}))
    return *failure;
  return createAll(world, program, capacity, kernels, count);
}

cl_int CL_API_CALL fake::clRetainKernel(cl_kernel kernel) {
  return World::current("clRetainKernel")
      .retain("clRetainKernel", kernel, CL_INVALID_KERNEL);
}

cl_int CL_API_CALL fake::clReleaseKernel(cl_kernel kernel) {
  return World::current("clReleaseKernel")
      .release("clReleaseKernel", kernel, CL_INVALID_KERNEL);
}

cl_int CL_API_CALL fake::clGetKernelInfo(cl_kernel handle, cl_kernel_info what,
                                         size_t capacity, void *value,
                                         size_t *size) {
  World &world = World::current("clGetKernelInfo");
  if (const auto failure =
          world.begin("clGetKernelInfo",
                      {world.say(handle), kernelInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto kernel = world.objects.find(handle);
  if (!kernel)
    return CL_INVALID_KERNEL;
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_KERNEL_FUNCTION_NAME:
    return answer(wanted, kernel->script.name);
  case CL_KERNEL_NUM_ARGS:
    return answerValue(wanted, kernel->script.argumentCount);
  case CL_KERNEL_REFERENCE_COUNT:
    return answerValue(wanted, cl_uint{kernel->references});
  case CL_KERNEL_PROGRAM:
    return answerValue(wanted, kernel->program->handle);
  default:
    return CL_INVALID_VALUE;
  }
}
