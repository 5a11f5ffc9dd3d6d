// The thread on which versions of kernels are measured.

#pragma once

#include <chrono>
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

/// Waits until no task is under way or waits for its turn, but not longer than
/// \p most; returns whether that is so. Call stopTuning before. On the tuning
/// thread it waits for nothing.
bool waitForTuning(std::chrono::milliseconds most);

/// From now on the thread makes no call to the runtime, which may be gone soon,
/// and what waits for its tasks waits for ever. For the end of a process whose
/// tasks do not end.
void abandonTuning();

/// On the tuning thread, after each call that may have taken long: does not
/// return once tuning is abandoned.
void leaveIfAbandoned();

/// Allows tasks again, for an agent that is loaded once more.
void resumeTuning();

} // namespace corvane
