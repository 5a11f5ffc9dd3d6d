// Which memory objects the application's kernels were given.

#pragma once

#include "layer/MemoryObjects.h"

namespace corvane::layer {

/// What a launch of \p kernel with the arguments of this moment may touch;
/// anything for a kernel that is not known or works on shared virtual memory.
TouchedMemory memoryOf(cl_kernel kernel);

} // namespace corvane::layer
