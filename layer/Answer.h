// An answer to one of OpenCL's queries.

#pragma once

#include <CL/cl.h>

#include <cstring>

namespace corvane::layer {

/// Where whoever asked wants the answer, and how large it may be.
struct Answer {
  size_t room;
  void *value;    ///< null: not wanted
  size_t *length; ///< null: not wanted

  /// Gives `size` bytes from `data`; too little room is an invalid value.
  cl_int give(const void *data, size_t size) const {
    if (value && room < size)
      return CL_INVALID_VALUE;
    if (value && size != 0)
      std::memcpy(value, data, size);
    if (length)
      *length = size;
    return CL_SUCCESS;
  }
};

} // namespace corvane::layer
