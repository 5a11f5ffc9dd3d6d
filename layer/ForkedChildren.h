// Calls of forked children go past the layer.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Puts a call before each of the layer's in the table for the application, and
/// keeps the layer's for it: in a forked child, where locks of the layer may be
/// held for ever, the application calls the runtime. Call once, when the table
/// is complete.
void passChildrenThrough(LayerTable &table);

} // namespace corvane::layer
