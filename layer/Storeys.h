// What the layer puts below the agent and above it.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Replaces what the agent is to find in place of the runtime's calls. Call
/// before it gets the table.
void standBelow(cl_icd_dispatch &agentCalls);

/// Replaces what the application is to find in place of the agent's. Call
/// before the loader gets the table, which is a copy of the agent's.
void standAbove(cl_icd_dispatch &applicationCalls);

} // namespace corvane::layer
