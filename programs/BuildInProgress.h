// Builds and links under way: several builds of one program at a time, and a
// second attempt that hides a variable from the compiler.

#pragma once

#include "agent/AgentState.h"
#include "agent/Environment.h"

#include <CL/cl.h>

#include <thread>

namespace corvane {

/// One call of the application's that builds a program; lives on the stack of
/// the call. The agent lock is not held while the runtime builds, so several
/// threads may build one program at a time.
///
/// The kernels of a program are created for a moment to learn their names, and
/// a runtime refuses to build a program that has kernels. So a build that ends
/// while another thread still builds the same program leaves its collection to
/// that thread; the records are in the end what builds one after the other
/// would have made them.
class BuildInProgress {
public:
  /// \p builtProgram may be null. Takes the agent lock for a moment, as all
  /// calls here do.
  explicit BuildInProgress(cl_program builtProgram);
  ~BuildInProgress();
  BuildInProgress(const BuildInProgress &) = delete;
  BuildInProgress &operator=(const BuildInProgress &) = delete;

  /// Call once, when the runtime has built. Collects the kernels, if
  /// \p collects, and those that other builds have left to this one; or leaves
  /// them to a build that is still under way. Without a state nothing is
  /// collected.
  void finish(bool collects);

private:
  BuildInProgress *otherOfProgram() const;

  const cl_program program;
  const std::thread::id thread;
  unsigned owedCollections = 0; ///< left by other builds
  BuildInProgress *next;        ///< in the list of all that are under way
};

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

/// Calls \p attempt, a second build or link, while the compiler of the runtime
/// does not see that the agent autotunes. Returns what \p attempt returns.
template <typename Attempt> auto attemptWithoutAutotune(Attempt attempt) {
  const AutotuneHidden hidden;
  return attempt();
}

} // namespace corvane
