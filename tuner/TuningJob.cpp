// Runs and compares versions as the plan says, and restores buffers after each.

#include "tuner/TuningJob.h"

#include "agent/RuntimeTable.h"

#include <new>
#include <utility>

using namespace corvane;

static std::vector<std::string> namesOf(const TunedLaunch &launch) {
  std::vector<std::string> names;
  for (const MeasuredVersion &version : launch.versions)
    names.push_back(version.name);
  return names;
}

TuningJob::TuningJob(TunedLaunch launchToMeasure, unsigned samples,
                     Tolerance allowedDifference,
                     std::shared_ptr<TuningBudget> time,
                     std::unique_ptr<TuningListener> listenTo)
    : launch(std::move(launchToMeasure)), tolerance(allowedDifference),
      plan(namesOf(launch), samples,
           allowedDifference.mode != Tolerance::Mode::Off),
      budget(std::move(time)), listener(std::move(listenTo)) {}

TuningJob::~TuningJob() { letGo(); }

// The objects go first: once its own run is over, the application finds as
// many references as it would alone.
void TuningJob::letGo() {
  const Owned<cl_event> done = std::move(launch.done);
  launch = TunedLaunch();
  if (!done)
    return;
  const cl_int status = buffersAreSpoiled ? CL_OUT_OF_RESOURCES : CL_COMPLETE;
  // The application waits for it: a failure is not taken for an answer the
  // first time.
  if (runtime().clSetUserEventStatus(done.get(), status) != CL_SUCCESS)
    (void)runtime().clSetUserEventStatus(done.get(), status);
}

void TuningJob::run() noexcept {
  const auto start = std::chrono::steady_clock::now();
  TuningEnd end = TuningEnd::NoMemory;
  try {
    end = measure();
  } catch (const std::bad_alloc &) {
    // The buffers can still be restored: their copy needs no more memory.
  }
  if (buffersAreSpoiled)
    buffersAreSpoiled = saved->writeTo(launch.queue.get()) != CL_SUCCESS;
  const auto added = std::chrono::steady_clock::now() - start;
  budget->spent += added.count();
  try {
    listener->ended(end, plan, added);
  } catch (const std::bad_alloc &) {
    // The decision is lost, and the application's kernel stays in use.
  }
  letGo();
}

TuningEnd TuningJob::measure() {
  if (budget->isSpent() || tuningIsStopped())
    return TuningEnd::OutOfTime;
  saved = BufferContents::allocate(launch.buffers);
  reference = BufferContents::allocate(launch.buffers);
  if (!saved || !reference)
    return TuningEnd::NoMemory;
  if (saved->readFrom(launch.queue.get()) != CL_SUCCESS)
    return TuningEnd::Failed;

  const auto start = std::chrono::steady_clock::now();
  while (const std::optional<PlannedRun> run = plan.next()) {
    const auto now = std::chrono::steady_clock::now() - start;
    if (tuningIsStopped() ||
        budget->spent + now.count() >= budget->limit.count())
      return TuningEnd::OutOfTime;
    if (!makeRun(*run))
      plan.failed(*run);
    if (saved->writeTo(launch.queue.get()) != CL_SUCCESS)
      return TuningEnd::Failed;
    buffersAreSpoiled = false;
    plan.took(std::chrono::steady_clock::now() - start);
    if (wroteNothing)
      return TuningEnd::Unchanged;
  }
  return TuningEnd::Measured;
}

Owned<cl_event> TuningJob::enqueue(const MeasuredVersion &version) const {
  cl_event event = nullptr;
  const cl_int status = runtime().clEnqueueNDRangeKernel(
      launch.queue.get(), version.kernel.get(), launch.workDim,
      launch.globalOffset ? launch.globalOffset->data() : nullptr,
      version.global.data(), version.localSize(), 0, nullptr, &event);
  return Owned<cl_event>(status == CL_SUCCESS ? event : nullptr);
}

// Counters that run backwards or stand still tell no time.
std::optional<double> TuningJob::timeOf(cl_event event) const {
  cl_ulong start = 0;
  cl_ulong end = 0;
  const auto ask = [event](cl_profiling_info name, cl_ulong &value) {
    return runtime().clGetEventProfilingInfo(event, name, sizeof value, &value,
                                             nullptr) == CL_SUCCESS;
  };
  if (!ask(CL_PROFILING_COMMAND_START, start) ||
      !ask(CL_PROFILING_COMMAND_END, end) || end <= start)
    return std::nullopt;
  return static_cast<double>(end - start) / 1000.0;
}

bool TuningJob::makeRun(const PlannedRun &run) {
  buffersAreSpoiled = true;
  const Owned<cl_event> event = enqueue(launch.versions[run.version]);
  const cl_event waitFor = event.get();
  // A run that fails while it is executed makes the wait fail.
  const bool succeeded =
      event && runtime().clWaitForEvents(1, &waitFor) == CL_SUCCESS;
  leaveIfAbandoned();
  if (!succeeded)
    return false;
  const std::optional<double> microseconds = timeOf(waitFor);
  plan.completed(run, microseconds);
  if (microseconds)
    listener->sampled(run, *microseconds);
  if (run.purpose == PlannedRun::Purpose::Reference)
    return takeReference();
  return !run.compared || checkRun(run);
}

// A variant that does nothing would pass where the contents do not change.
bool TuningJob::takeReference() {
  if (reference->readFrom(launch.queue.get()) != CL_SUCCESS)
    return false;
  wroteNothing = tolerance.mode != Tolerance::Mode::Off &&
                 reference->hasContentsOf(*saved);
  return true;
}

bool TuningJob::checkRun(const PlannedRun &run) {
  BufferContents::Check check;
  if (reference->compare(launch.queue.get(), tolerance, check) != CL_SUCCESS)
    return false;
  plan.compared(run, check.equality);
  listener->checked(run.version, check);
  return true;
}
