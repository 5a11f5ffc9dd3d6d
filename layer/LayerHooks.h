// Installs the layer's calls into the dispatch tables.

#pragma once

#include "layer/LayerTable.h"
#include "layer/TuningMode.h"

namespace corvane::layer {

/// Replaces what the agent is to find in place of the runtime's calls. Call
/// before the agent gets \p table, a copy of the runtime's.
void installLowerHooks(cl_icd_dispatch &table);

/// Replaces what the application is to find in place of the agent's calls in
/// \p table, a copy of the agent's. Call before the loader gets a table.
void installUpperHooks(cl_icd_dispatch &table);

/// Replaces further calls in \p table, a copy of the upper half's, unless
/// nothing can be tuned. Call before the loader gets the table.
void installTuningHooks(cl_icd_dispatch &table, TuningMode mode);

} // namespace corvane::layer
