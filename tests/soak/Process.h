// What a process has got and not given back.

#pragma once

#include <cstddef>

namespace soak {

/// Bytes of the heap that are in use, in all its parts, whoever uses them.
std::size_t liveBytes();

/// Open file descriptors.
std::size_t openFiles();

} // namespace soak
