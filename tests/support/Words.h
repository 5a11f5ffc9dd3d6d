// Arguments of OpenCL calls in words, for the transcript.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test {

/// "blur" with its quotes, or null.
std::string quoted(const char *text);

/// "&" if there is a place to write to or a function to call; else "null".
std::string place(bool given);

/// The first \p count values as "[64, 1]", or "null".
std::string sizes(cl_uint count, const std::size_t *values);

/// Every byte as two digits; "null" without bytes.
std::string bytesInWords(std::size_t size, const void *value);

/// The words with ", " between them.
std::string joined(const std::vector<std::string> &words);

/// "CL_PROGRAM_DEVICES" and the like; the number for a rare parameter.
std::string programInfoName(cl_program_info name);
std::string kernelInfoName(cl_kernel_info name);
std::string queueInfoName(cl_command_queue_info name);
std::string eventInfoName(cl_event_info name);
std::string deviceInfoName(cl_device_info name);
std::string argumentInfoName(cl_kernel_arg_info name);
std::string profilingInfoName(cl_profiling_info name);

} // namespace corvane::test
