// What the environment asks of tuning.

#pragma once

#include "tuning/Tolerance.h"

#include <chrono>
#include <optional>
#include <string>

namespace corvane {

/// The variables of CORVANE_TUNE, as they were at the load.
struct TuneSettings {
  using Duration = std::chrono::steady_clock::duration;

  std::string folder;                  ///< absolute where that can be told
  unsigned samples = 7;                ///< that a decision needs; 1 or more
  Tolerance tolerance;                 ///< exact unless asked otherwise
  Duration mostTime = Duration::max(); ///< that tuning may add in all
};

/// Reads the variables; none without a folder. A value that cannot be read is
/// told on the error stream and counts as not given. \p loadFolder is where a
/// relative folder is looked for; it stays relative where that is empty. Hold
/// an EnvironmentLook.
std::optional<TuneSettings> readTuneSettings(const std::string &loadFolder);

} // namespace corvane
