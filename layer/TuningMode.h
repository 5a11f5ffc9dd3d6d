// Whether launches of this process may be tuned, and how.

#pragma once

#include "base/Platform.h"
#include "base/Settings.h"

#include <cstdlib>

namespace corvane::layer {

enum class TuningMode {
  None,
  /// The agent tunes each launch that it sees, within the call. The layer keeps
  /// launches from it that may not be tuned.
  Autotune,
  /// The agent sees all launches and asks of each one whether it may be tuned,
  /// which it does later, on a thread of its own.
  Tune,
};

/// Reads the environment, which does not count in a process that has more
/// rights than the user who started it.
inline TuningMode readTuningMode() {
  if (platform::hasForeignRights())
    return TuningMode::None;
  if (std::getenv(variable::autotune))
    return TuningMode::Autotune;
  return std::getenv(variable::tune) ? TuningMode::Tune : TuningMode::None;
}

/// What the environment asks the agent for, whether or not the agent will find
/// the folders usable. Call it first before the agent is loaded, which may move
/// a variable; what it finds then holds for the process.
inline TuningMode tuningMode() {
  static const TuningMode mode = readTuningMode();
  return mode;
}

} // namespace corvane::layer
