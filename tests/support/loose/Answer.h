// Answers queries.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <cstring>

namespace corvane::test::loose {

/// Where the caller wants an answer; a null place is not wanted.
struct Wanted {
  std::size_t capacity;
  void *value;
  std::size_t *size;

  cl_int give(const void *data, std::size_t length) const {
    if (value && capacity < length)
      return CL_INVALID_VALUE;
    if (value)
      std::memcpy(value, data, length);
    if (size)
      *size = length;
    return CL_SUCCESS;
  }
  template <typename Value> cl_int give(const Value &answer) const {
    return give(&answer, sizeof answer);
  }
  cl_int giveText(const char *text) const {
    return give(text, std::strlen(text) + 1);
  }
};

} // namespace corvane::test::loose
