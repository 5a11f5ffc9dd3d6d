// Texts that the runtime tells in two steps: their size, and their characters.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <optional>
#include <string>

namespace corvane::layer {

/// \p ask(capacity, place, size) makes the call and returns its status. None if
/// either step fails, or if the runtime claims an absurd size. Ends with the
/// first zero, if there is one.
template <typename Ask> std::optional<std::string> readText(Ask ask) {
  constexpr size_t most = size_t{64} << 20;
  size_t size = 0;
  if (ask(size_t{0}, static_cast<char *>(nullptr), &size) != CL_SUCCESS ||
      size > most)
    return std::nullopt;
  std::string text(size + 1, '\0');
  if (size != 0 &&
      ask(size, text.data(), static_cast<size_t *>(nullptr)) != CL_SUCCESS)
    return std::nullopt;
  text.resize(text.find('\0'));
  return text;
}

} // namespace corvane::layer
