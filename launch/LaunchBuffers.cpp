// Asks the runtime what an argument was declared as.

#include "launch/ArgumentMemory.h"

#include "agent/RuntimeTable.h"
#include "agent/platform/Platform.h"

#include <cstdint>

using namespace corvane;

// Whether a value may be a size or a count though memory lies there: some
// processes have memory at low addresses, and sizes are often round.
static bool isLikeASize(std::uintptr_t value) {
  constexpr std::uintptr_t page = 4096;
  constexpr std::uintptr_t beyondSizes = std::uintptr_t{1} << 32;
  return value % page == 0 && value < beyondSizes;
}

// An object of the runtime's lies in memory and is aligned.
static bool canBeHandle(cl_mem value) {
  const auto bits = reinterpret_cast<std::uintptr_t>(value);
  return bits % sizeof(void *) == 0 && !isLikeASize(bits) &&
         platform::isOccupied(value);
}

// Reads one property of an argument; false when the runtime does not tell.
template <typename Property>
static bool readProperty(cl_kernel kernel, cl_uint index,
                         cl_kernel_arg_info name, Property &property) {
  return runtime().clGetKernelArgInfo(kernel, index, name, sizeof property,
                                      &property, nullptr) == CL_SUCCESS;
}

static bool isDeclaredWritable(cl_kernel kernel, cl_uint index) {
  cl_kernel_arg_address_qualifier space = CL_KERNEL_ARG_ADDRESS_GLOBAL;
  if (!readProperty(kernel, index, CL_KERNEL_ARG_ADDRESS_QUALIFIER, space))
    return true;
  if (space != CL_KERNEL_ARG_ADDRESS_GLOBAL)
    return false;

  cl_kernel_arg_access_qualifier access = CL_KERNEL_ARG_ACCESS_NONE;
  if (readProperty(kernel, index, CL_KERNEL_ARG_ACCESS_QUALIFIER, access) &&
      access != CL_KERNEL_ARG_ACCESS_NONE)
    return access != CL_KERNEL_ARG_ACCESS_READ_ONLY;

  cl_kernel_arg_type_qualifier type = CL_KERNEL_ARG_TYPE_NONE;
  return !readProperty(kernel, index, CL_KERNEL_ARG_TYPE_QUALIFIER, type) ||
         (type & CL_KERNEL_ARG_TYPE_CONST) == 0;
}

bool corvane::mayBeWritableMemory(cl_kernel kernel, cl_uint index,
                                  cl_mem value) {
  return canBeHandle(value) && runtime().clGetKernelArgInfo &&
         isDeclaredWritable(kernel, index);
}
