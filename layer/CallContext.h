// What the two halves of the layer tell each other during one call.

#pragma once

#include "base/LaunchTuningQuery.h"

#include <CL/cl.h>

#include <optional>
#include <vector>

namespace corvane::layer {

class Notification;
struct Launch;

/// One call of the application's, on its way through the agent. A hook of the
/// upper half makes the context on its stack before it calls the agent, fills
/// in what the lower half needs to know, and afterwards reads what the lower
/// half has seen the agent do. That works because the agent makes its calls on
/// the thread that calls it.
///
/// The runtime may call the application in the middle of a call, and what the
/// application calls then has a context of its own: the lower half always means
/// the innermost one. On a thread of the agent's own there is none, so its
/// calls are never taken for the application's.
///
/// Used by its own thread alone.
class CallContext {
public:
  CallContext();
  ~CallContext();
  CallContext(const CallContext &) = delete;
  CallContext &operator=(const CallContext &) = delete;

  /// The innermost context of this thread; null in a call that has none.
  static CallContext *current();

  /// Whether this thread is inside a launch that the agent has, or is about to
  /// get. The agent holds its lock then, so what the application calls
  /// meanwhile must not wait for the launches of other threads.
  static bool isInAgentsLaunch();

  /// The status of the attempt to build or link that the layer has made before
  /// it called the agent; once, and nothing when the runtime must be asked.
  std::optional<cl_int> takeAttempt();

  // What the upper half tells, for a build or a link.

  /// The program that the agent builds or has linked; null if none is known.
  cl_program builtProgram = nullptr;
  /// The status of an attempt that the layer has made; see `takeAttempt`.
  std::optional<cl_int> attempted;
  /// Hears of an attempt of the agent's that succeeds; null: not wanted.
  Notification *notification = nullptr;

  // What the upper half tells, for the creation of a kernel.

  /// The application creates a kernel, which the agent has not done yet.
  bool createsKernel = false;

  // What the upper half tells, for a launch.

  /// The launch as the application asked for it; null in any other call.
  const Launch *launch = nullptr;
  /// What the agent may do with it.
  LaunchTuning tuning = LaunchTuning::NotNow;
  /// The agent has the launch, or is about to get it.
  bool isWithAgent = false;

  // What the lower half tells.

  /// The kernels that the agent has created, the application's among them.
  std::vector<cl_kernel> createdKernels;
  /// The agent has asked whether it may tune the launch.
  bool wasAsked = false;
  /// A launch has reached the runtime, whatever its kernel.
  bool hasLaunched = false;
  /// The agent has created a user event: the launch may be tuned by a thread of
  /// the agent's, and wait for that.
  bool hasUserEvent = false;

private:
  CallContext *const outer;
};

} // namespace corvane::layer
