// Kernels that work on shared virtual memory, of which the agent knows nothing.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Whether the kernel was given pointers to such memory. Its variants were not,
/// so it must run alone.
bool usesSvm(cl_kernel kernel);

/// Takes notice of pointers that kernels are given.
void noticeSvm(cl_icd_dispatch &above);

} // namespace corvane::layer
