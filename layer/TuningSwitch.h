// Whether launches of this process may be autotuned.

#pragma once

#include <cstdlib>

namespace corvane::layer {

/// True if the environment asks the agent for autotuning, whether or not it
/// will find its folder usable. Ask while the layer starts: the agent moves the
/// variable later.
inline bool tuningMayBeOn() {
  return std::getenv("CORVANE_AUTOTUNE") != nullptr;
}

} // namespace corvane::layer
