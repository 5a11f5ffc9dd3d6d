// The figures of each version's samples, and the ranking of the versions.

#pragma once

#include "results/RawTimingLog.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

/// The figures of one version in one configuration, in microseconds.
struct VersionStats {
  double min = 0.0;
  double max = 0.0;
  double median = 0.0; ///< of an even number: the upper of the middle two
  double mean = 0.0;   ///< outliers included
  double stddev = 0.0; ///< of the population
  Samples samples;     ///< ascending
  Samples arrival;     ///< the samples in the order of the log
  Samples outliers;    ///< ascending
};

/// A configuration whose versions have been compared.
struct RankedConfig {
  LaunchKey launchKey;
  /// The versions, fastest mean first; equal means in the order of the names.
  std::vector<std::pair<std::string, VersionStats>> ranking;

  /// The figures of the application's own kernel; null if it never ran.
  const VersionStats *baseline() const;

  /// How many samples the version with the fewest has: what the report shows
  /// for all of them.
  std::size_t sampleCount() const;
};

/// Whether a run took so long that it is marked; it still counts.
inline bool isOutlier(double sample, double min) { return sample > 3.0 * min; }

/// The figures of \p samples; all zero if there are none.
VersionStats computeStats(Samples samples);

RankedConfig rankVersions(ConfigResults config);

} // namespace corvane
