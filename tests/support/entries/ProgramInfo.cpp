// Answers queries about the scripted runtime's programs.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

static std::string namesOf(const Program &program) {
  std::string names;
  for (const KernelScript &kernel : program.latest()->kernels)
    names += (names.empty() ? "" : ";") + kernel.name;
  return names;
}

static std::vector<cl_device_id> devicesOf(World &world,
                                           const Program &program) {
  std::vector<cl_device_id> devices;
  for (unsigned number = 1; number <= program.deviceCount; ++number)
    devices.push_back(world.device(number));
  return devices;
}

static cl_build_status buildStatusOf(const Program &program) {
  if (!program.latest())
    return CL_BUILD_NONE;
  return program.latest()->status == CL_SUCCESS ? CL_BUILD_SUCCESS
                                                : CL_BUILD_ERROR;
}

static cl_int tell(World &world, const Program &program, cl_program_info what,
                   fake::Wanted wanted) {
  const bool aboutKernels =
      what == CL_PROGRAM_NUM_KERNELS || what == CL_PROGRAM_KERNEL_NAMES;
  if (aboutKernels && !program.latest())
    return CL_INVALID_PROGRAM_EXECUTABLE;

  switch (what) {
  case CL_PROGRAM_SOURCE:
    return fake::answer(wanted, program.source);
  case CL_PROGRAM_CONTEXT:
    return program.context
               ? fake::answerValue(wanted, cl_context{program.context})
               : CL_INVALID_VALUE;
  case CL_PROGRAM_REFERENCE_COUNT:
    return answerValue(wanted, cl_uint{program.references});
  case CL_PROGRAM_NUM_DEVICES:
    return answerValue(
        wanted, world.lies.deviceCount.value_or(cl_uint{program.deviceCount}));
  case CL_PROGRAM_DEVICES: {
    const auto devices = devicesOf(world, program);
    return fake::answer(wanted, devices.data(),
                        devices.size() * sizeof(cl_device_id));
  }
  case CL_PROGRAM_NUM_KERNELS:
    return answerValue(wanted, program.latest()->kernels.size());
  case CL_PROGRAM_KERNEL_NAMES:
    return fake::answer(wanted, namesOf(program));
  default:
    return CL_INVALID_VALUE;
  }
}

cl_int CL_API_CALL fake::clGetProgramInfo(cl_program handle,
                                          cl_program_info what, size_t capacity,
                                          void *value, size_t *size) {
  World &world = World::current("clGetProgramInfo");
  if (const auto failure =
          world.begin("clGetProgramInfo",
                      {world.say(handle), programInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto program = world.objects.find(handle);
  if (!program)
    return CL_INVALID_PROGRAM;
  return tell(world, *program, what, {capacity, value, size});
}

static std::string logOf(const Program &program, unsigned device) {
  const Build *build = program.latest();
  const auto found =
      build ? build->logs.find(device) : decltype(build->logs.end()){};
  return build && found != build->logs.end() ? found->second : "";
}

cl_int CL_API_CALL fake::clGetProgramBuildInfo(cl_program handle,
                                               cl_device_id device,
                                               cl_program_build_info what,
                                               size_t capacity, void *value,
                                               size_t *size) {
  World &world = World::current("clGetProgramBuildInfo");
  if (const auto failure = world.begin(
          "clGetProgramBuildInfo",
          {world.say(handle), world.say(device), programInfoName(what),
           std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto program = world.objects.find(handle);
  if (!program)
    return CL_INVALID_PROGRAM;
  if (what == CL_PROGRAM_BUILD_OPTIONS)
    return answer({capacity, value, size}, program->options);
  if (what == CL_PROGRAM_BUILD_STATUS)
    return fake::answerValue({capacity, value, size}, buildStatusOf(*program));
  if (what != CL_PROGRAM_BUILD_LOG)
    return CL_INVALID_VALUE;
  const cl_int status =
      answer({capacity, value, size}, logOf(*program, world.numberOf(device)));
  if (size && world.lies.buildLogSize)
    *size = *world.lies.buildLogSize;
  return status;
}
