// What one call that enqueues a command needs from its admission to its return.

#pragma once

#include "layer/CallContext.h"
#include "layer/CommandsInFlight.h"

#include <vector>

namespace corvane::layer {

/// The last arguments of a call that enqueues, as the application gave them.
struct EnqueueArguments {
  cl_uint waitCount;
  const cl_event *waitList;
  cl_event *event; ///< null: not wanted
};

/// One call that enqueues a command, from its admission on. Lives on the stack
/// of that call.
class Enqueueing {
public:
  /// With \p blocking the command is over when the call has returned. \p launch
  /// is the context of a launch that the agent could tune, which is told
  /// whether it may; null for any other command.
  Enqueueing(CommandRequest request, const EnqueueArguments &asked,
             bool blocking, CallContext *launch = nullptr);

  /// What to give the runtime in place of the application's.
  const EnqueueArguments &arguments() const { return toGive; }

  /// Call with what came of the call, once. Returns \p status.
  cl_int returned(cl_int status);

private:
  bool isTuned() const;

  const EnqueueArguments given;
  const bool isBlocking;
  const CallContext *const launchContext;
  Admission admission;
  std::vector<cl_event> waits;
  cl_event ownEvent = nullptr;
  EnqueueArguments toGive;
};

} // namespace corvane::layer
