// Enqueues a command under the conditions on which it may be enqueued now.

#pragma once

#include "layer/CommandsInFlight.h"

#include <vector>

namespace corvane::layer {

/// The last arguments of a call that enqueues, as the application gave them.
struct EnqueueArguments {
  cl_uint waitCount;
  const cl_event *waitList;
  cl_event *event; ///< null: not wanted
};

/// One call that enqueues a command, from its admission on.
class Enqueueing {
public:
  /// With \p blocking the command is over when the call has returned.
  Enqueueing(CommandRequest request, const EnqueueArguments &asked,
             bool blocking, bool wantsTuning);

  /// Whether the launch may go to the agent.
  bool mayBeTuned() const { return admission.mayBeTuned; }

  /// What to give the runtime in place of the application's.
  const EnqueueArguments &arguments() const { return toGive; }

  /// Notes what came of the call, and returns \p status.
  cl_int returned(cl_int status);

private:
  const EnqueueArguments given;
  const bool isBlocking;
  Admission admission;
  std::vector<cl_event> waits;
  cl_event ownEvent = nullptr;
  EnqueueArguments toGive;
};

} // namespace corvane::layer
