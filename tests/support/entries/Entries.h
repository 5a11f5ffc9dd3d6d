// The entries that the scripted runtime plays, and how they answer.

#pragma once

#include "agent/DispatchTable.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

namespace corvane::test::fake {

#define SCRIPTED(name)                                                         \
  std::remove_pointer_t<decltype(DispatchTable::name)> name;
#include "tests/support/entries/Scripted.def"

/// Stores \p status in the application's slot, if there is one.
inline void setStatus(cl_int *slot, cl_int status) {
  if (slot)
    *slot = status;
}

/// Where a query wants its answer.
struct Wanted {
  std::size_t capacity;
  void *value;       ///< may be null
  std::size_t *size; ///< may be null
};

/// Answers a query as OpenCL asks for it: a null value asks for the size alone.
inline cl_int answer(Wanted wanted, const void *data, std::size_t size) {
  if (wanted.value && wanted.capacity < size)
    return CL_INVALID_VALUE;
  if (wanted.value && size != 0)
    std::memcpy(wanted.value, data, size);
  if (wanted.size)
    *wanted.size = size;
  return CL_SUCCESS;
}
inline cl_int answer(Wanted wanted, const std::string &text) {
  return answer(wanted, text.c_str(), text.size() + 1);
}
template <typename Value>
cl_int answerValue(Wanted wanted, const Value &value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  return answer(wanted, &value, sizeof value);
}

} // namespace corvane::test::fake
