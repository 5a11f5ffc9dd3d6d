// All kernels of a program at once.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The agent's own call creates kernels to count them, and knows of no room but
/// the exact one. This one creates what the application has room for, variants
/// aside, and nothing when it only counts.
void createWithoutVariants(cl_icd_dispatch &above);

} // namespace corvane::layer
