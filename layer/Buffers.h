// Buffers made by the call after OpenCL 1.2, led to where the agent sees them.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The agent hooks what OpenCL 1.2 has. A buffer that the newer call makes
/// without properties is made by that older call; one with properties is not
/// the agent's business.
void leadBuffersToAgent(cl_icd_dispatch &above);

} // namespace corvane::layer
