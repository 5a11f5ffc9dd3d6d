// Programs of the loose runtime, whose sources are names.

#include "tests/support/loose/Answer.h"
#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

#include <string>
#include <thread>

using namespace corvane;
using namespace corvane::test::loose;

static cl_program CL_API_CALL createProgram(cl_context context, cl_uint,
                                            const char **strings,
                                            const size_t *, cl_int *status) {
  *status = CL_SUCCESS;
  return handleOf<cl_program>(
      new Program(objectOf(context)->shared, sourceCalled(strings[0])));
}

// Yields first, so that other threads may do something meanwhile.
static cl_int CL_API_CALL build(cl_program, cl_uint, const cl_device_id *,
                                const char *,
                                void(CL_CALLBACK *)(cl_program, void *),
                                void *) {
  for (int i = 0; i != 20; ++i)
    std::this_thread::yield();
  return CL_SUCCESS;
}

static cl_program CL_API_CALL link(cl_context context, cl_uint,
                                   const cl_device_id *, const char *, cl_uint,
                                   const cl_program *,
                                   void(CL_CALLBACK *)(cl_program, void *),
                                   void *, cl_int *status) {
  if (status)
    *status = CL_SUCCESS;
  return handleOf<cl_program>(
      new Program(objectOf(context)->shared, sourceCalled("linked")));
}

static std::string namesOf(const Program &program) {
  std::string names;
  for (const KernelType &kernel : program.source.kernels)
    names += (names.empty() ? "" : ";") + std::string(kernel.name);
  return names;
}

static cl_int CL_API_CALL tell(cl_program handle, cl_program_info what,
                               size_t capacity, void *value, size_t *size) {
  const Program &program = *objectOf(handle);
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_PROGRAM_NUM_DEVICES:
    return wanted.give(cl_uint{1});
  case CL_PROGRAM_DEVICES:
    return wanted.give(theDevice());
  case CL_PROGRAM_SOURCE:
    return wanted.giveText(program.source.text);
  case CL_PROGRAM_NUM_KERNELS:
    return wanted.give(program.source.kernels.size());
  case CL_PROGRAM_KERNEL_NAMES:
    return wanted.giveText(namesOf(program).c_str());
  default:
    return CL_INVALID_VALUE;
  }
}

static cl_int CL_API_CALL tellOfBuild(cl_program program, cl_device_id,
                                      cl_program_build_info what,
                                      size_t capacity, void *value,
                                      size_t *size) {
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_PROGRAM_BUILD_LOG:
    return wanted.giveText(objectOf(program)->source.log);
  case CL_PROGRAM_BUILD_OPTIONS:
    return wanted.giveText("");
  default:
    return CL_INVALID_VALUE;
  }
}

void corvane::test::loose::addPrograms(DispatchTable &table) {
  table.clCreateProgramWithSource = createProgram;
  table.clBuildProgram = build;
  table.clLinkProgram = link;
  table.clGetProgramInfo = tell;
  table.clGetProgramBuildInfo = tellOfBuild;
}
