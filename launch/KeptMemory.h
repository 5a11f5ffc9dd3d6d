// Memory whose last transfer nobody can tell the end of.

#pragma once

#include "programs/BufferRecord.h"

#include <vector>

namespace corvane {

/// Keeps \p copies until the process ends. For transfers that are under way
/// while there is no event to tell when they are over: too long is better than
/// too short. Needs no memory for that, and a copy is kept once at most. Hold
/// the agent lock.
void keepForever(const std::vector<HostCopy> &copies);

} // namespace corvane
