// Arguments of OpenCL calls in words.

#include "tests/support/Words.h"

using namespace corvane;

std::string test::quoted(const char *text) {
  return text ? '"' + std::string(text) + '"' : "null";
}

std::string test::place(bool given) { return given ? "&" : "null"; }

std::string test::sizes(cl_uint count, const std::size_t *values) {
  if (!values)
    return "null";
  std::vector<std::string> words;
  for (cl_uint i = 0; i != count; ++i)
    words.push_back(std::to_string(values[i]));
  return "[" + joined(words) + "]";
}

std::string test::bytesInWords(std::size_t size, const void *value) {
  if (!value)
    return "null";
  constexpr const char *digits = "0123456789abcdef";
  const auto *bytes = static_cast<const unsigned char *>(value);
  std::string words;
  for (std::size_t i = 0; i != size; ++i) {
    if (i != 0)
      words += ' ';
    words += digits[bytes[i] / 16];
    words += digits[bytes[i] % 16];
  }
  return words;
}

std::string test::joined(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) {
    if (!text.empty())
      text += ", ";
    text += word;
  }
  return text;
}

#define NAME(name)                                                             \
  case name:                                                                   \
    return #name;

std::string test::programInfoName(cl_program_info name) {
  switch (name) {
    NAME(CL_PROGRAM_CONTEXT)
    NAME(CL_PROGRAM_NUM_DEVICES)
    NAME(CL_PROGRAM_DEVICES)
    NAME(CL_PROGRAM_NUM_KERNELS)
    NAME(CL_PROGRAM_KERNEL_NAMES)
    NAME(CL_PROGRAM_REFERENCE_COUNT)
    NAME(CL_PROGRAM_BUILD_STATUS)
    NAME(CL_PROGRAM_BUILD_LOG)
  default:
    return std::to_string(name);
  }
}

std::string test::kernelInfoName(cl_kernel_info name) {
  switch (name) {
    NAME(CL_KERNEL_FUNCTION_NAME)
    NAME(CL_KERNEL_NUM_ARGS)
    NAME(CL_KERNEL_REFERENCE_COUNT)
    NAME(CL_KERNEL_PROGRAM)
  default:
    return std::to_string(name);
  }
}

std::string test::queueInfoName(cl_command_queue_info name) {
  switch (name) {
    NAME(CL_QUEUE_PROPERTIES)
    NAME(CL_QUEUE_CONTEXT)
    NAME(CL_QUEUE_DEVICE)
    NAME(CL_QUEUE_REFERENCE_COUNT)
  default:
    return std::to_string(name);
  }
}

std::string test::deviceInfoName(cl_device_info name) {
  switch (name) {
    NAME(CL_DEVICE_NAME)
    NAME(CL_DEVICE_VENDOR)
    NAME(CL_DEVICE_VERSION)
    NAME(CL_DRIVER_VERSION)
    NAME(CL_DEVICE_TYPE)
    NAME(CL_DEVICE_MAX_COMPUTE_UNITS)
    NAME(CL_DEVICE_LOCAL_MEM_SIZE)
  default:
    return std::to_string(name);
  }
}

std::string test::eventInfoName(cl_event_info name) {
  switch (name) {
    NAME(CL_EVENT_COMMAND_TYPE)
    NAME(CL_EVENT_COMMAND_EXECUTION_STATUS)
    NAME(CL_EVENT_REFERENCE_COUNT)
  default:
    return std::to_string(name);
  }
}

std::string test::argumentInfoName(cl_kernel_arg_info name) {
  switch (name) {
    NAME(CL_KERNEL_ARG_ADDRESS_QUALIFIER)
    NAME(CL_KERNEL_ARG_ACCESS_QUALIFIER)
    NAME(CL_KERNEL_ARG_TYPE_QUALIFIER)
    NAME(CL_KERNEL_ARG_TYPE_NAME)
  default:
    return std::to_string(name);
  }
}

std::string test::profilingInfoName(cl_profiling_info name) {
  switch (name) {
    NAME(CL_PROFILING_COMMAND_START)
    NAME(CL_PROFILING_COMMAND_END)
  default:
    return std::to_string(name);
  }
}

#undef NAME
