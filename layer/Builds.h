// Builds and links, as the application asked for them.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The upper half keeps the application's notification from the agent, notes
/// what the agent hides of the program, and then notifies. The lower half lets
/// the agent learn each program anew, and hears the runtime's notification.
void watchBuilds(cl_icd_dispatch &below);
void serveBuilds(cl_icd_dispatch &above);

} // namespace corvane::layer
