// Whether launches of this process may be tuned, and how.

#pragma once

#include "base/Settings.h"

#include <cstdlib>

namespace corvane::layer {

enum class TuningMode {
  None,
  /// A launch that the agent sees is tuned, within its call.
  Autotune,
  /// The agent asks of each launch whether it may be tuned, and tunes it later
  /// on a thread of its own.
  Tune,
};

/// What the environment asks the agent for, whether or not the agent will find
/// the folders usable. Call it first before the agent is loaded, which may move
/// a variable; what it finds then holds for the process.
inline TuningMode tuningMode() {
  static const TuningMode mode =
      std::getenv(variable::autotune) ? TuningMode::Autotune : TuningMode::None;
  return mode;
}

} // namespace corvane::layer
