// Measures the versions of a kernel for one launch of the application's.

#pragma once

#include "agent/Owned.h"
#include "tuner/BufferContents.h"
#include "tuner/TuningThread.h"
#include "tuning/MeasuringPlan.h"
#include "tuning/Tolerance.h"

#include <CL/cl.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The time that tuning may add to the program's, and has added. Shared by all
/// jobs. Any thread.
struct TuningBudget {
  using Duration = std::chrono::steady_clock::duration;

  Duration limit = Duration::max();
  std::atomic<Duration::rep> spent{0};

  bool isSpent() const { return spent.load() >= limit.count(); }
};

/// One version of a kernel, ready to run: a kernel object of its own, with the
/// launch's arguments.
struct MeasuredVersion {
  std::string name; ///< spec text; empty: the application's kernel
  Owned<cl_kernel> kernel;
  std::array<std::size_t, 3> global{};
  std::array<std::size_t, 3> local{};
  bool hasLocal = false; ///< false: the runtime chooses

  const std::size_t *localSize() const {
    return hasLocal ? local.data() : nullptr;
  }
};

/// Everything that a launch has by which its versions can be measured without
/// the application. Owns a reference to every object.
struct TunedLaunch {
  Owned<cl_command_queue> queue; ///< of the agent's own, with profiling
  cl_uint workDim = 1;
  std::optional<std::array<std::size_t, 3>> globalOffset;
  std::vector<MeasuredVersion>
      versions;                     ///< the application's kernel is the first
  std::vector<TunedBuffer> buffers; ///< each once
  std::vector<Owned<cl_mem>> otherMemory; ///< that kernels only read
  std::vector<Owned<cl_sampler>> samplers;
  /// The application's own run waits for it. Completed when the buffers are as
  /// the application left them, and failed if they cannot be made so.
  Owned<cl_event> done;
};

/// How a job ended.
enum class TuningEnd : std::uint8_t {
  Measured,  ///< the plan is through
  Unchanged, ///< the original wrote what was there: nothing can be compared
  OutOfTime, ///< the budget is spent, or tuning was stopped
  NoMemory,  ///< for copies of the buffers
  Failed,    ///< a call to the runtime that measuring cannot do without
};

/// Hears what a job finds, on the tuning thread and in this order: samples and
/// checks, then the end, before the application's own run may start.
class TuningListener {
public:
  virtual ~TuningListener() = default;
  virtual void sampled(const PlannedRun &run, double microseconds) = 0;
  virtual void checked(unsigned version,
                       const BufferContents::Check &check) = 0;
  /// \p added is the time by which the job has held up the application's run.
  virtual void ended(TuningEnd end, const MeasuringPlan &plan,
                     TuningBudget::Duration added) = 0;
};

/// Runs the versions as a plan says, each on the contents that the application
/// left, and leaves the buffers as it found them. Start it when everything that
/// the launch waits for is complete.
class TuningJob final : public TuningTask {
public:
  /// \p listener hears of each event; \p budget is shared.
  TuningJob(TunedLaunch launchToMeasure, unsigned samples,
            Tolerance allowedDifference, std::shared_ptr<TuningBudget> time,
            std::unique_ptr<TuningListener> listenTo);
  /// Lets the application's run go if the job was never run.
  ~TuningJob() override;

  void run() noexcept override;

private:
  TuningEnd measure();
  bool makeRun(const PlannedRun &run);
  bool takeReference();
  bool checkRun(const PlannedRun &run);
  std::optional<double> timeOf(cl_event event) const;
  Owned<cl_event> enqueue(const MeasuredVersion &version) const;
  void letGo();

  TunedLaunch launch;
  const Tolerance tolerance;
  MeasuringPlan plan;
  std::shared_ptr<TuningBudget> budget;
  std::unique_ptr<TuningListener> listener;
  std::unique_ptr<BufferContents> saved;
  std::unique_ptr<BufferContents> reference;
  bool buffersAreSpoiled = false;
  bool wroteNothing = false; ///< the reference run
};

} // namespace corvane
