// Queues, which the agent must have profiling and the application need not see.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// A queue gets profiling whichever call makes it, or is made as asked if it
/// cannot have that. All that the application is told of such a queue and its
/// events is what it would be told of the queue that it asked for.
void hideProfiling(cl_icd_dispatch &above);

} // namespace corvane::layer
