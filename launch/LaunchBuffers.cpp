// Tells buffers, other memory and plain values apart among arguments.

#include "launch/LaunchBuffers.h"

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "base/Platform.h"
#include "programs/BufferRecord.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>

using namespace corvane;

// Whether a value may be a size or a count although it is also an address of
// the process: some processes have memory at low addresses, and sizes are often
// multiples of a page.
static bool isLikeASize(std::uintptr_t value) {
  constexpr std::uintptr_t pageSize = 4096;
  constexpr std::uintptr_t beyondSizes = std::uintptr_t{1} << 32;
  return value % pageSize == 0 && value < beyondSizes;
}

// Whether a value may be the address of an object of the runtime: it is
// aligned, and memory of the process is there.
static bool canBeHandle(cl_mem value) {
  const auto bits = reinterpret_cast<std::uintptr_t>(value);
  return bits % sizeof(void *) == 0 && !isLikeASize(bits) &&
         platform::isOccupied(value);
}

// Reads one property of an argument; false if the runtime does not say.
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

// An argument that is no recorded buffer may be memory that the kernel can
// write to: a sub-buffer, an image, a buffer that was created otherwise. Asks
// the runtime only about values that could be a handle. If the runtime cannot
// answer such questions at all, the argument counts as a plain value.
void LaunchBuffers::addUnrecorded(cl_kernel kernel, cl_uint argument,
                                  cl_mem value) {
  if (!canBeHandle(value) || !runtime().clGetKernelArgInfo)
    return;
  cl_kernel_arg_address_qualifier space = CL_KERNEL_ARG_ADDRESS_GLOBAL;
  const bool isTold =
      readProperty(kernel, argument, CL_KERNEL_ARG_ADDRESS_QUALIFIER, space);
  if (isDeclaredWritable(kernel, argument))
    complete = false;
  else if (isTold && (space == CL_KERNEL_ARG_ADDRESS_GLOBAL ||
                      space == CL_KERNEL_ARG_ADDRESS_CONSTANT))
    readOnly.push_back(value);
}

LaunchBuffers::LaunchBuffers(AgentState &state, const KernelRecord &record) {
  for (const RecordedArgument &argument : record.arguments.recorded()) {
    if (argument.size != sizeof(cl_mem) || !argument.value)
      continue;
    cl_mem memObject = nullptr;
    std::memcpy(&memObject, argument.value, sizeof memObject);
    if (!add(state, memObject, argument.index))
      addUnrecorded(record.kernel, argument.index, memObject);
  }
}

// Returns whether the handle is a recorded buffer's.
bool LaunchBuffers::add(AgentState &state, cl_mem memObject, cl_uint argument) {
  std::lock_guard<std::mutex> lock(state.buffersLock);
  const BufferRecord *buffer = state.buffers.find(memObject);
  if (!buffer)
    return false;
  // Of two records of one handle the older describes a buffer that is
  // destroyed: the runtime has not said so, but it gives out no handle that is
  // in use.
  if (!buffer->hostMayTransfer || !state.buffers.isUnique(memObject))
    complete = complete && buffer->size == 0;
  else if (buffer->size != 0 && !contains(memObject))
    buffers.push_back({memObject, buffer->size, argument});
  return true;
}

bool LaunchBuffers::contains(cl_mem memObject) const {
  return std::any_of(buffers.begin(), buffers.end(),
                     [&](const LaunchBuffer &buffer) {
                       return buffer.memObject == memObject;
                     });
}
