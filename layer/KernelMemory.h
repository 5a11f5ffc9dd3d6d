// Which memory objects the application's kernels were given.

#pragma once

#include "layer/MemoryObjects.h"

namespace corvane::layer {

/// What a launch of \p kernel with the arguments of this moment may touch;
/// anything for a kernel that is not known or works on shared virtual memory.
TouchedMemory memoryOf(cl_kernel kernel);

/// Has the calls that create, release and prepare kernels followed. \p next are
/// the calls to make; it must live as long as the process.
void followKernelMemory(cl_icd_dispatch &calls, const cl_icd_dispatch &next);

} // namespace corvane::layer
