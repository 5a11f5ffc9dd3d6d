// Decides between a kernel and its variants by samples of their times.

#pragma once

#include "results/runs/RunLines.h"

#include "llvm/ADT/ArrayRef.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// A version wins only if its interval lies below this.
inline constexpr double winningRatio = 0.98;

/// How likely a configuration may be decided for a version that is no faster,
/// however many versions it has and however often a decision is tried; and how
/// likely one interval misses the ratio.
inline constexpr double errorProbability = 0.05;

/// How often a decision may be tried while a configuration is measured.
inline constexpr unsigned mostTries = 4;

/// The middle one of the samples, in any order; of an even number the mean of
/// the two in the middle. 0 without samples.
double medianOf(std::vector<double> samples);

/// Whether a version is dropped after its first samples that count: at least
/// two, of which both the first and the second exceed twice the original's
/// median.
bool isHopeless(llvm::ArrayRef<double> samples, double originalMedian);

/// A version with its samples that count, in microseconds, in their order.
struct VersionSamples {
  std::string version; ///< empty: the original
  std::vector<double> samples;
  bool out = false; ///< not compared: its output differed, or it cannot run
  /// The samples of the original that were taken together with these. Empty:
  /// all that the original has.
  std::vector<double> originals = {};
};

struct Decision {
  /// Whether there are enough samples: each variant that is not out was dropped
  /// or has an interval.
  bool decided = false;
  std::string winner; ///< empty: the original, also when not decided
  /// As many as the versions, in their order.
  std::vector<VersionFigures> versions;
};

/// Decides between the original, which \p versions holds as any other, and the
/// rest. Without samples of the original nothing is decided. The version with
/// the least median, in proportion to that of the original's samples beside it,
/// and of two the first one, wins if its interval lies below winningRatio;
/// otherwise the original does.
Decision decide(llvm::ArrayRef<VersionSamples> versions);

} // namespace corvane
