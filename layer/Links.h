// Links, as the application asked for them.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// The application is notified when the agent has seen the linked program; see
/// Builds.h.
void serveLinks(cl_icd_dispatch &above);

} // namespace corvane::layer
