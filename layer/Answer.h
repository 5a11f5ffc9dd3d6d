// Answers a query in the way of OpenCL.

#pragma once

#include <CL/cl.h>

#include <cstring>

namespace corvane::layer {

/// Where the caller of a query wants the answer.
struct Answer {
  size_t capacity; ///< bytes at `value`
  void *value;     ///< null: not wanted
  size_t *length;  ///< null: not wanted

  /// Gives `size` bytes from `data`, or CL_INVALID_VALUE if they do not fit.
  cl_int give(const void *data, size_t size) const {
    if (value && capacity < size)
      return CL_INVALID_VALUE;
    if (value && size != 0)
      std::memcpy(value, data, size);
    if (length)
      *length = size;
    return CL_SUCCESS;
  }
};

} // namespace corvane::layer
