// How many references to a kernel the application holds.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Has the agent, when it asks for the reference count of a kernel, hear of the
/// application's references alone.
///
/// The agent takes a kernel for gone when it sees the last reference released.
/// A runtime may hold references of its own for launches that have not run yet;
/// counted in, they would hide the last release, and the agent would keep its
/// record, to find it again under the next kernel at the same address.
///
/// Call once, before the agent gets the table. The counting calls may come on
/// any thread.
void countKernelReferences(LayerTable &table);

/// Gives the application the runtime's own answer to what it asks of a kernel.
/// Call once, after the agent has worked on the table.
void answerKernelQueriesBelow(LayerTable &table);

} // namespace corvane::layer
