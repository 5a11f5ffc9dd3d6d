// Writes reports of failed OpenCL calls.

#include "agent/ClError.h"

#include "agent/ErrorStream.h"

#include <array>
#include <cstddef>
#include <cstdio>

using namespace corvane;

// The codes between -14 and -29 and below -63 came after OpenCL 1.1 and go by
// their number.
static const char *standardName(cl_int code) {
  switch (code) {
#define NAME(name)                                                             \
  case name:                                                                   \
    return #name;
    NAME(CL_SUCCESS)
    NAME(CL_DEVICE_NOT_FOUND)
    NAME(CL_DEVICE_NOT_AVAILABLE)
    NAME(CL_COMPILER_NOT_AVAILABLE)
    NAME(CL_MEM_OBJECT_ALLOCATION_FAILURE)
    NAME(CL_OUT_OF_RESOURCES)
    NAME(CL_OUT_OF_HOST_MEMORY)
    NAME(CL_PROFILING_INFO_NOT_AVAILABLE)
    NAME(CL_MEM_COPY_OVERLAP)
    NAME(CL_IMAGE_FORMAT_MISMATCH)
    NAME(CL_IMAGE_FORMAT_NOT_SUPPORTED)
    NAME(CL_BUILD_PROGRAM_FAILURE)
    NAME(CL_MAP_FAILURE)
    NAME(CL_MISALIGNED_SUB_BUFFER_OFFSET)
    NAME(CL_INVALID_VALUE)
    NAME(CL_INVALID_DEVICE_TYPE)
    NAME(CL_INVALID_PLATFORM)
    NAME(CL_INVALID_DEVICE)
    NAME(CL_INVALID_CONTEXT)
    NAME(CL_INVALID_QUEUE_PROPERTIES)
    NAME(CL_INVALID_COMMAND_QUEUE)
    NAME(CL_INVALID_HOST_PTR)
    NAME(CL_INVALID_MEM_OBJECT)
    NAME(CL_INVALID_IMAGE_FORMAT_DESCRIPTOR)
    NAME(CL_INVALID_IMAGE_SIZE)
    NAME(CL_INVALID_SAMPLER)
    NAME(CL_INVALID_BINARY)
    NAME(CL_INVALID_BUILD_OPTIONS)
    NAME(CL_INVALID_PROGRAM)
    NAME(CL_INVALID_PROGRAM_EXECUTABLE)
    NAME(CL_INVALID_KERNEL_NAME)
    NAME(CL_INVALID_KERNEL_DEFINITION)
    NAME(CL_INVALID_KERNEL)
    NAME(CL_INVALID_ARG_INDEX)
    NAME(CL_INVALID_ARG_VALUE)
    NAME(CL_INVALID_ARG_SIZE)
    NAME(CL_INVALID_KERNEL_ARGS)
    NAME(CL_INVALID_WORK_DIMENSION)
    NAME(CL_INVALID_WORK_GROUP_SIZE)
    NAME(CL_INVALID_WORK_ITEM_SIZE)
    NAME(CL_INVALID_GLOBAL_OFFSET)
    NAME(CL_INVALID_EVENT_WAIT_LIST)
    NAME(CL_INVALID_EVENT)
    NAME(CL_INVALID_OPERATION)
    NAME(CL_INVALID_GL_OBJECT)
    NAME(CL_INVALID_BUFFER_SIZE)
    NAME(CL_INVALID_MIP_LEVEL)
    NAME(CL_INVALID_GLOBAL_WORK_SIZE)
#undef NAME
  default:
    return nullptr;
  }
}

namespace {
/// The name of a status as text that needs no memory: what failed may well have
/// failed for want of it.
struct Name {
  std::array<char, 48> text{};

  explicit Name(cl_int code) {
    if (const char *standard = standardName(code))
      std::snprintf(text.data(), text.size(), "%s", standard);
    else
      std::snprintf(text.data(), text.size(), "unknown code(%d)", code);
  }
};
} // namespace

std::string corvane::clErrorName(cl_int code) { return Name(code).text.data(); }

void corvane::reportClError(CallSite site, cl_int code) {
  std::array<char, 96> line{};
  const int length =
      std::snprintf(line.data(), line.size(), "QrlAgent:: %d: CL Error: %s\n",
                    static_cast<int>(site), Name(code).text.data());
  writeError({line.data(), static_cast<std::size_t>(length)});
}
