// Makes a profile from run records.

#pragma once

#include "results/profile/Profile.h"
#include "results/runs/RunReader.h"

#include "llvm/ADT/ArrayRef.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// A version in one configuration.
struct TunedVersion {
  VersionFigures figures;
  Agreement check = Agreement::Unknown;
};

/// A configuration of any number of runs with what their samples amount to.
struct TunedConfiguration {
  ProfileDevice device;
  std::string program; ///< hash
  std::string kernel;
  LaunchSizes sizes;

  /// Whether there are enough samples for a decision, or a process made one;
  /// only then the profile gets an entry.
  bool decided = false;
  std::string winner; ///< empty: the original
  /// The original first, the others by median, those without samples last.
  std::vector<TunedVersion> versions;
  /// Why it was not tuned, from the first run that gives a reason; else empty.
  std::string untunable;
  /// Of the application; of a process that was killed, the one with samples.
  std::uint64_t launches = 0;

  /// The interval of the winner, or else of the version with the least median;
  /// none when no version could be compared with the original.
  std::optional<RatioInterval> bestInterval() const;
};

/// The samples of all runs for the same device, driver, program, kernel and
/// sizes together. Samples that do not count are left out. A version that a
/// check found different, in any run, is out for its program; where an original
/// differs from itself, no variant of the kernel is chosen. Ordered by device,
/// program, kernel and sizes, whatever the order of \p runs.
std::vector<TunedConfiguration> mergeRuns(llvm::ArrayRef<RunRecord> runs);

/// The decided ones as a profile.
Profile makeProfile(llvm::ArrayRef<TunedConfiguration> configurations);

} // namespace corvane
