// Kernels of the loose runtime and their arguments.

#include "tests/support/loose/Answer.h"
#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

#include <algorithm>
#include <cstring>

using namespace corvane;
using namespace corvane::test::loose;

// Creates a kernel. A list keeps the variants: one that the agent has forgotten
// in a flush is never released, and must not look like a leak of the test.
static cl_kernel make(Program &program, const KernelType &type) {
  static auto &variants = *new Inbox<const Kernel *>;
  auto *kernel = new Kernel(program, type);
  if (type.isVariant() && program.shared.behaviour.remembersRuns)
    variants.add(kernel);
  return handleOf<cl_kernel>(kernel);
}

static cl_kernel CL_API_CALL create(cl_program handle, const char *name,
                                    cl_int *status) {
  Program &program = *objectOf(handle);
  const auto &declared = program.source.kernels;
  const auto found =
      std::find_if(declared.begin(), declared.end(), [name](const auto &k) {
        return !std::strcmp(k.name, name);
      });
  const bool exists = found != declared.end();
  if (status)
    *status = exists ? CL_SUCCESS : CL_INVALID_KERNEL_NAME;
  return exists ? make(program, *found) : nullptr;
}

static cl_int CL_API_CALL createAll(cl_program handle, cl_uint capacity,
                                    cl_kernel *kernels, cl_uint *count) {
  Program &program = *objectOf(handle);
  const auto &declared = program.source.kernels;
  if (kernels && capacity < declared.size())
    return CL_INVALID_VALUE;
  if (kernels)
    for (const KernelType &type : declared)
      *kernels++ = make(program, type);
  if (count)
    *count = static_cast<cl_uint>(declared.size());
  return CL_SUCCESS;
}

// Two threads must not set an argument at the same time; the thread sanitizer
// would see it here.
static cl_int CL_API_CALL setArgument(cl_kernel handle, cl_uint index,
                                      size_t size, const void *value) {
  Kernel &kernel = *objectOf(handle);
  if (index >= kernel.type.arguments() || size > sizeof(Argument::bytes))
    return CL_INVALID_ARG_INDEX;
  kernel.arguments[index].size = size;
  std::memcpy(kernel.arguments[index].bytes.data(), value, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL tell(cl_kernel handle, cl_kernel_info what,
                               size_t capacity, void *value, size_t *size) {
  const Kernel &kernel = *objectOf(handle);
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_KERNEL_FUNCTION_NAME:
    return wanted.giveText(kernel.type.name);
  case CL_KERNEL_NUM_ARGS:
    return wanted.give(kernel.type.arguments());
  case CL_KERNEL_PROGRAM:
    return wanted.give(
        handleOf<cl_program>(const_cast<Program *>(&*kernel.program)));
  case CL_KERNEL_REFERENCE_COUNT:
    return wanted.give(kernel.referenceCount());
  default:
    return CL_INVALID_VALUE;
  }
}

// Never succeeds, so the agent has to assume that unknown memory may be written
// to.
static cl_int CL_API_CALL tellOfArgument(cl_kernel, cl_uint, cl_kernel_arg_info,
                                         size_t, void *, size_t *) {
  return CL_KERNEL_ARG_INFO_NOT_AVAILABLE;
}

void corvane::test::loose::addKernels(DispatchTable &table) {
  table.clCreateKernel = create;
  table.clCreateKernelsInProgram = createAll;
  table.clSetKernelArg = setArgument;
  table.clGetKernelInfo = tell;
  table.clGetKernelArgInfo = tellOfArgument;
}
