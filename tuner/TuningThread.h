// The thread on which versions of kernels are measured.

#pragma once

#include <memory>

namespace corvane {

/// Work for the tuning thread.
class TuningTask {
public:
  virtual ~TuningTask() = default;
  /// Called once, on the tuning thread; no exception may leave it. What waits
  /// for the task must be let go also by its destructor, in case it never runs.
  virtual void run() noexcept = 0;
};

/// Has the thread run \p task after those that came before, and destroy it
/// there. The first task starts the thread. So neither the application's
/// threads nor the runtime's wait for a measurement, and a measurement may wait
/// for the runtime. Waits for nothing. False, with the task left alone, if
/// there is no thread and none can be started, or tuning has been stopped. Any
/// thread.
bool postTuningTask(std::unique_ptr<TuningTask> &task);

/// Tasks are to end as soon as they can, and no other starts: the process is
/// ending, or the agent is unloaded. Waits for nothing. Any thread.
void stopTuning();

/// Whether stopTuning was called.
bool tuningIsStopped();

/// Allows tasks again, for an agent that is loaded once more.
void resumeTuning();

} // namespace corvane
