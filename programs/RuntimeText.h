// Texts and bytes that the runtime tells, whatever sizes it claims.

#pragma once

#include "agent/Owned.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>

namespace corvane {

/// A text that the runtime tells in two steps, its size and its characters.
/// \p ask(capacity, place, size) makes the call and returns its status. None if
/// either step fails, or if the runtime claims more than \p most bytes. Ends
/// with the first zero, if there is one.
template <typename Ask>
std::optional<std::string> readRuntimeText(std::size_t most, Ask ask) {
  std::size_t size = 0;
  if (ask(std::size_t{0}, static_cast<void *>(nullptr), &size) != CL_SUCCESS ||
      size > most)
    return std::nullopt;
  if (size == 0)
    return std::string();
  // One more, for a text that lacks its end.
  const auto text = allocateZeroed<char>(size + 1);
  if (!text || ask(size, static_cast<void *>(text.get()),
                   static_cast<std::size_t *>(nullptr)) != CL_SUCCESS)
    return std::nullopt;
  text[size] = '\0';
  return std::string(text.get());
}

/// A value of a fixed size. \p ask(capacity, place) makes the call and returns
/// its status. None if it fails.
template <typename Value, typename Ask>
std::optional<Value> readRuntimeValue(Ask ask) {
  Value value{};
  if (ask(sizeof value, static_cast<void *>(&value)) != CL_SUCCESS)
    return std::nullopt;
  return value;
}

} // namespace corvane
