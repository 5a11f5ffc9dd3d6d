// Compares two overviews: what became faster or slower from one to the other.

#pragma once

#include "results/overview/Overview.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

enum class Change { Faster, Slower, NoDifference, TooFew };

/// "faster", "slower", ...
const char *changeText(Change change);

/// A configuration that both overviews have: a kernel with its sizes on a
/// device of this name. What each of them uses is compared: the time of its
/// winner.
struct ComparedConfiguration {
  const OverviewConfiguration *before = nullptr;
  const OverviewConfiguration *after = nullptr;
  double medianBefore = 0.0; ///< in microseconds, of the version to use
  double medianAfter = 0.0;
  /// Of the time after to the time before, 95 %; none: too few samples.
  std::optional<RatioInterval> interval;
  Change change = Change::TooFew;

  /// How much longer it takes, as a part: 0.05 is 5 %.
  double slowdown() const { return medianAfter / medianBefore - 1.0; }
};

struct Comparison {
  /// Those with the most kernel time before first.
  std::vector<ComparedConfiguration> configurations;
  /// Those that one overview has alone, or that have no time in one of them.
  std::vector<const OverviewConfiguration *> onlyBefore;
  std::vector<const OverviewConfiguration *> onlyAfter;
};

/// Both overviews must outlive the result. A log names no device, so its
/// configurations are compared with those of any device.
Comparison compare(const Overview &before, const Overview &after);

} // namespace corvane
