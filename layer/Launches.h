// Launches that the agent must not see, and those that it loses after it has
// written its results.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// A launch that no variant could stand in for goes to the runtime at once: one
/// on shared virtual memory, or with a global offset. Once the agent has
/// written its results at a context's release, it answers launches without
/// launching anything. The lower half sees what gets through, and the upper
/// half sends to the runtime what did not.
void watchLaunches(cl_icd_dispatch &below);
void repeatLostLaunches(cl_icd_dispatch &above);

} // namespace corvane::layer
