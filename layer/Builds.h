// Builds, as the application asked for them.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The layer begins a build that the application wants to be notified of, and
/// has the agent look at the program when the runtime has notified; then it
/// notes what the agent hides, and notifies. Nothing waits meanwhile. Other
/// builds are the agent's, between whose call and the application's the layer
/// only notes what is hidden.
void serveBuilds(cl_icd_dispatch &above);

} // namespace corvane::layer
