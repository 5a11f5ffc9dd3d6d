// Memory and files that a process has in use.

#pragma once

#include <cstddef>

namespace soak {

/// Bytes in use in all parts of the heap, by all code of the process.
std::size_t liveBytes();

/// Open file descriptors.
std::size_t openFiles();

} // namespace soak
