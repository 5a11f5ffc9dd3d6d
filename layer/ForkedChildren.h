// Keeps the calls of forked children out of the layer.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Puts a check before each of the layer's calls in the table for the
/// application. In a forked child, where a thread that does not exist may hold
/// a lock of the layer, the application calls the runtime. Call once, when the
/// table is complete.
void passChildrenThrough(LayerTable &table);

} // namespace corvane::layer
