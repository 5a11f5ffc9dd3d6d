// Carries one run to the moment when its time is known.

#pragma once

#include "agent/LaunchRecord.h"
#include "launch/EventChain.h"
#include "programs/BufferRecord.h"

#include <CL/cl.h>

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// What the completion of a run needs; shares it with the state, which may be
/// gone by then.
struct TimingTicket {
  std::shared_ptr<LaunchHistory> history;
  std::shared_ptr<LaunchRecord> record;
  std::string version; ///< spec text; empty: the application's kernel
  /// Events of the launch's commands, which this run may be the last to need.
  std::shared_ptr<HeldEvents> events;
  /// Memory of transfers that are over when this run is.
  std::vector<HostCopy> keptAlive;
};

/// Has the run behind \p event timed when it completes. Returns the runtime's
/// status; after a failure the ticket stays with the caller, else it is gone.
cl_int timeRun(cl_event event, std::unique_ptr<TimingTicket> &ticket);

} // namespace corvane
