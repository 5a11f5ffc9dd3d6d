// What is known of a run that is being timed until it has completed.

#pragma once

#include "launch/EventChain.h"
#include "programs/BufferRecord.h"
#include "session/LaunchHistory.h"

#include <CL/cl.h>

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// What the completion of a run needs. It may come after the flush has
/// destroyed the state, so the ticket shares the history with the state.
struct TimingTicket {
  std::shared_ptr<LaunchHistory> history;
  std::shared_ptr<LaunchRecord> record;
  std::string version; ///< spec text; empty: the application's kernel
  /// Events of the launch's commands, which this run may be the last to need.
  std::shared_ptr<HeldEvents> events;
  /// Memory of transfers, which are all over when this run is.
  std::vector<HostCopy> keptAlive;
};

/// Has the run of \p event timed when it completes. Returns the runtime's
/// status. After a failure the caller keeps the ticket; otherwise the
/// completion callback owns it.
cl_int timeRun(cl_event event, std::unique_ptr<TimingTicket> &ticket);

} // namespace corvane
