// Kernels that the agent keeps beside the application's and may forget.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The agent keeps a kernel for each variant, and releases it with the kernel
/// that it belongs to, unless it has written its results by then. What it
/// leaves is released for it: a program cannot be built again while it has
/// kernels.
void releaseForgottenKernels(cl_icd_dispatch &above);

} // namespace corvane::layer
