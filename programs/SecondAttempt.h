// A second build or link, during which the runtime's compiler does not see that
// the agent autotunes.

#pragma once

#include "agent/AgentState.h"
#include "agent/Environment.h"

namespace corvane {

/// Hides CORVANE_AUTOTUNE while it lives. Takes the agent lock at its birth and
/// at its end only: the compiler may take long.
class AutotuneHidden {
public:
  AutotuneHidden() {
    AgentGuard guard;
    hideAutotune();
  }
  ~AutotuneHidden() {
    AgentGuard guard;
    restoreAutotune();
  }
  AutotuneHidden(const AutotuneHidden &) = delete;
  AutotuneHidden &operator=(const AutotuneHidden &) = delete;
};

/// Returns what \p attempt returns.
template <typename Attempt> auto attemptWithoutAutotune(Attempt attempt) {
  const AutotuneHidden hidden;
  return attempt();
}

} // namespace corvane
