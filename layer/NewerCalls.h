// Newer ways to make queues and buffers, led to where the agent can see them.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Replaces the entries of `table`, which the agent has worked on already, that
/// create queues and buffers by a list of properties. The agent hooks what
/// OpenCL 1.2 has; a runtime that brings an agent answers for the rest, and so
/// does the layer: such a queue gets profiling as well, and a buffer without
/// properties is made by the call that the agent hooks. Entries that `table`
/// lacks stay null.
///
/// Call once, before the loader gets the table.
void serveNewerCalls(LayerTable &table);

} // namespace corvane::layer
