// Writes reports of failed OpenCL calls.

#include "agent/ClError.h"

#include "agent/DebugLog.h"

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

std::string corvane::clErrorName(cl_int code) {
  if (const char *name = standardName(code))
    return name;
  return "unknown code(" + std::to_string(code) + ")";
}

void corvane::reportClError(CallSite site, cl_int code) {
  writeError("QrlAgent:: " + std::to_string(static_cast<int>(site)) +
             ": CL Error: " + clErrorName(code) + "\n");
}
