// What the samples of a version amount to, and which version is the fastest.

#pragma once

#include "results/ConfigResults.h"

namespace corvane {

/// Whether a run took so long that it is marked; it still counts.
inline bool isOutlier(double sample, double min) { return sample > 3.0 * min; }

/// Fills everything in \p stats from its samples and leaves those ascending.
/// Does nothing without samples.
void computeStats(VersionStats &stats);

/// Computes the statistics of each version and makes the ranking: ascending by
/// mean, equal means in the order of the names.
void rankVersions(ConfigResults &config);

} // namespace corvane
