// The calls that enqueue commands, seen so that autotuned launches do not get
// into each other's way or into that of other commands.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Puts a watch before all calls of \p calls that enqueue commands or create
/// what they work on. Call once and last, when autotuning may be on.
void watchCommands(cl_icd_dispatch &calls);

} // namespace corvane::layer
