// The agent's builds and links, as it makes them below itself.

#pragma once

#include "layer/LayerTable.h"
#include "layer/Notification.h"

#include <chrono>
#include <optional>
#include <thread>

namespace corvane::layer {

/// What the agent finds when it builds or links on this thread. There is one at
/// a time; one within another's call hides it.
struct AgentsBuild {
  explicit AgentsBuild(cl_program builtProgram);
  ~AgentsBuild();
  AgentsBuild(const AgentsBuild &) = delete;
  AgentsBuild &operator=(const AgentsBuild &) = delete;

  cl_program program; ///< null before a link has made one
  /// The status of an attempt that the layer has made already, and the agent
  /// has not asked for yet.
  std::optional<cl_int> attempted;
  /// Null if the application wants none.
  Notification *notification = nullptr;
  AgentsBuild *const outer;
};

/// A program that has kernels cannot be built. The runtime still has one for a
/// moment after its launch is over, and longer when the agent looks at the
/// launch first: then alone the build would have worked, and is tried again.
/// Where the application has kernels, it hears of it somewhat later.
template <typename Build> cl_int buildWithoutKernels(Build tryToBuild) {
  cl_int status = tryToBuild();
  for (int tries = 0; status == CL_INVALID_OPERATION && tries != 100; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    status = tryToBuild();
  }
  return status;
}

/// Has the agent forget earlier builds of the program that it builds on this
/// thread; what it collects next would be added to them.
void forgetBuildsBeforeCollection(cl_program program);

/// Lets the agent have, in place of its first attempt, the one that the layer
/// has made; and learn each program anew.
void watchBuilds(cl_icd_dispatch &below);

} // namespace corvane::layer
