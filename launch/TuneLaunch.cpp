// The steps of a launch that may be measured.

#include "launch/TuneLaunch.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "base/ForkedChild.h"
#include "base/LaunchTuningQuery.h"
#include "launch/AppliedProfile.h"
#include "launch/JobReport.h"
#include "launch/MeasuredObjects.h"
#include "launch/NormalLaunch.h"
#include "launch/TunedProgram.h"
#include "launch/Tuning.h"
#include "programs/DeviceIdentity.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

using namespace corvane;
using State = MeasuredConfiguration::State;

namespace {
/// One launch of a kernel with a record, in a run that tunes.
class TuneLaunch {
public:
  TuneLaunch(AgentState &agentState, KernelRecord &kernelRecord,
             const Launch &asked, llvm::raw_ostream *diagnosticLog)
      : state(agentState), tuning(*agentState.tuning), record(kernelRecord),
        launch(asked), log(diagnosticLog),
        allowed(askForLaunchTuning(runtime().clGetKernelInfo, asked.kernel)) {}

  cl_int run();

private:
  bool identify();
  cl_int runWinner();
  cl_int runOriginal();
  cl_int measure();
  std::vector<VariantVerdict> examineVariants();
  bool mayUseVariants() const {
    return allowed != LaunchTuning::KernelOnly && !hasOffset(launch);
  }
  bool isProfiled();
  std::string obstacle();
  std::string obstacleInArguments();
  cl_int runAfter(TunedLaunch objects, std::vector<VariantVerdict> verdicts);

  AgentState &state;
  Tuning &tuning;
  KernelRecord &record;
  const Launch &launch;
  llvm::raw_ostream *const log;
  const LaunchTuning allowed;
  LaunchQueue queue;
  const TunedProgram *program = nullptr;
  MeasuredConfiguration *configuration = nullptr;
  std::vector<VariantChoice> candidates;
  ProfileAnswer profiled; ///< if isProfiled
};

/// What the completion of a marker gives to the tuning thread.
struct WaitingJob {
  std::unique_ptr<TuningTask> job;
  Owned<cl_event> marker;
};
} // namespace

static bool canMeasure(const DispatchTable &calls) {
  return calls.clCreateUserEvent && calls.clSetUserEventStatus &&
         calls.clEnqueueMarkerWithWaitList && calls.clSetEventCallback &&
         calls.clWaitForEvents;
}

// An event that only the application can complete. One of which the runtime
// does not say it counts as such.
static bool isOpenUserEvent(cl_event event) {
  cl_command_type type = CL_COMMAND_USER;
  cl_int status = CL_SUBMITTED;
  (void)runtime().clGetEventInfo(event, CL_EVENT_COMMAND_TYPE, sizeof type,
                                 &type, nullptr);
  if (type != CL_COMMAND_USER)
    return false;
  (void)runtime().clGetEventInfo(event, CL_EVENT_COMMAND_EXECUTION_STATUS,
                                 sizeof status, &status, nullptr);
  return status > CL_COMPLETE;
}

// False if the runtime does not say what identifies the launch in a record.
bool TuneLaunch::identify() {
  const std::optional<LaunchQueue> described = describeQueue(launch.queue);
  if (!described)
    return false;
  queue = *described;
  program = tunedProgram(tuning, state, record, queue.device);
  const std::optional<std::uint32_t> device = tunedDevice(tuning, queue.device);
  if (!program || !device)
    return false;
  configuration = tuning.configuration(program->number, record.name(), *device,
                                       sizesOf(launch));
  return configuration != nullptr;
}

std::vector<VariantVerdict> TuneLaunch::examineVariants() {
  std::vector<VariantVerdict> verdicts;
  for (VariantKernel &variant : record.variants) {
    const VariantChoice choice = examine(record, variant, launch);
    VariantVerdict verdict;
    verdict.spec = variant.description->spec;
    if (choice.refusal)
      verdict.refusal = explain(choice.refusal, sizesOf(launch));
    else if (tuning.isForbidden(*configuration, verdict.spec))
      verdict.refusal = "its results differed in another launch";
    else
      candidates.push_back(choice);
    verdicts.push_back(std::move(verdict));
  }
  return verdicts;
}

// Shared memory is set by other calls, so that an argument is missing.
std::string TuneLaunch::obstacleInArguments() {
  const std::optional<cl_uint> count = argumentCount(launch.kernel);
  std::size_t known = 0;
  for (const RecordedArgument &argument : record.arguments.recorded())
    known += argument.size != 0 ? 1 : 0;
  if (count != known)
    return "an argument was not set by clSetKernelArg, as shared memory is";
  if (!LaunchBuffers(state, record).areComplete())
    return "the kernel gets memory that cannot be saved";
  return {};
}

// Sizes that the profile has not measured are measured now, even if it has an
// answer for them.
bool TuneLaunch::isProfiled() {
  if (!state.profile || record.variants.empty())
    return false;
  profiled =
      state.profile->answer(state, record, queue.device, sizesOf(launch));
  return profiled.kind != ProfileAnswer::Unknown && profiled.measured;
}

// Why the launch cannot be measured, for the run record; empty if it can be.
std::string TuneLaunch::obstacle() {
  if (allowed == LaunchTuning::KernelOnly)
    return "the kernel gets shared memory, or the launch has a global offset";
  if (hasOffset(launch))
    return "the launch has a global offset";
  if (!program->obstacle.empty())
    return program->obstacle;
  if (tuning.isUnrepeatable(*configuration))
    return "the kernel does not repeat its own results";
  if (!canMeasure(runtime()))
    return "the runtime lacks what measuring needs";
  if (!queue.inOrder)
    return "the queue runs its commands in any order";
  std::string reason = obstacleInArguments();
  if (!reason.empty())
    return reason;
  if (allowed == LaunchTuning::NotNow)
    return "something else that may use its memory is in flight";
  if (std::any_of(launch.eventWaitList,
                  launch.eventWaitList + launch.numEventsInWaitList,
                  isOpenUserEvent))
    return "it waits for an event that the application has to complete";
  if (tuning.budget->isSpent())
    return "the time for tuning is spent";
  return {};
}

cl_int TuneLaunch::runOriginal() {
  const cl_int status = enqueue(launch);
  if (status == CL_SUCCESS && configuration)
    tuning.countVersion(*configuration, std::string());
  return status;
}

cl_int TuneLaunch::runWinner() {
  const std::string winner = tuning.winnerOf(*configuration);
  for (VariantKernel &variant : record.variants) {
    if (winner.empty() || variant.description->spec != winner)
      continue;
    const VariantChoice choice = examine(record, variant, launch);
    if (choice.refusal || !giveArguments(record, variant))
      break;
    const cl_int status = launchVariant(record, choice, launch, log);
    if (status == CL_SUCCESS)
      tuning.countVersion(*configuration, winner);
    return status;
  }
  return runOriginal();
}

// On a thread of the runtime's, which must not wait: the job goes to the tuning
// thread. A job that does not start lets the application's run go.
static void CL_CALLBACK markerCompleted(cl_event, cl_int status,
                                        void *userData) {
  if (inForkedChild())
    return;
  const std::unique_ptr<WaitingJob> waiting(
      static_cast<WaitingJob *>(userData));
  if (status != CL_COMPLETE)
    return;
  try {
    (void)postTuningTask(waiting->job);
  } catch (const std::bad_alloc &) {
    // An exception would end the process, because the thread is the runtime's.
    // Nothing is measured instead.
  }
}

static Owned<cl_event> enqueueMarker(const Launch &launch) {
  cl_event marker = nullptr;
  const cl_int status = runtime().clEnqueueMarkerWithWaitList(
      launch.queue, launch.numEventsInWaitList, launch.eventWaitList, &marker);
  return Owned<cl_event>(status == CL_SUCCESS ? marker : nullptr);
}

// The application's own run comes after the job; it still waits for what the
// application says, whose failure it shares.
static cl_int enqueueAfter(const Launch &launch, cl_event done) {
  std::vector<cl_event> waitList(
      launch.eventWaitList, launch.eventWaitList + launch.numEventsInWaitList);
  waitList.push_back(done);
  Launch held = launch;
  held.numEventsInWaitList = static_cast<cl_uint>(waitList.size());
  held.eventWaitList = waitList.data();
  return enqueue(held);
}

// Nothing is measured before the application's own run has its place in the
// queue. If the job cannot be started its end completes the user event, and the
// run goes on.
cl_int TuneLaunch::runAfter(TunedLaunch objects,
                            std::vector<VariantVerdict> verdicts) {
  std::vector<std::string> names;
  for (const MeasuredVersion &version : objects.versions)
    names.push_back(version.name);
  auto report = std::make_unique<JobReport>(
      state.tuning, *configuration, std::move(names), std::move(verdicts));
  const cl_event done = objects.done.get();
  auto waiting = std::make_unique<WaitingJob>();
  waiting->job = std::make_unique<TuningJob>(
      std::move(objects), tuning.settings.samples, tuning.settings.tolerance,
      tuning.budget, std::move(report));
  waiting->marker = enqueueMarker(launch);
  if (!waiting->marker || enqueueAfter(launch, done) != CL_SUCCESS)
    return runOriginal();
  tuning.countVersion(*configuration, std::string());

  const cl_event marker = waiting->marker.get();
  WaitingJob *handedOver = waiting.release();
  if (runtime().clSetEventCallback(marker, CL_COMPLETE, markerCompleted,
                                   handedOver) != CL_SUCCESS)
    waiting.reset(handedOver);
  (void)runtime().clFlush(launch.queue);
  return CL_SUCCESS;
}

cl_int TuneLaunch::measure() {
  std::vector<VariantVerdict> verdicts = examineVariants();
  if (mayUseVariants() && isProfiled()) {
    tuning.tell(*configuration, verdicts, "the profile has decided already");
    tuning.decide(*configuration, profiled.spec.str());
    return runWinner();
  }
  std::string reason = record.variants.empty() ? "" : obstacle();
  std::optional<TunedLaunch> objects;
  if (reason.empty() && !candidates.empty()) {
    objects = measuredObjects(record, launch, queue,
                              LaunchBuffers(state, record), candidates);
    if (!objects)
      reason = "the runtime refused an object that measuring needs";
  }
  tuning.tell(*configuration, verdicts, reason);
  if (objects)
    return runAfter(std::move(*objects), std::move(verdicts));
  if (reason.empty())
    tuning.decideForOriginal(*configuration, verdicts);
  return runOriginal();
}

cl_int TuneLaunch::run() {
  if (!identify())
    return runOriginal();
  const bool isChosen = tuning.stateOf(*configuration) == State::Over;
  if (isChosen && mayUseVariants())
    return runWinner();
  if (isChosen || tuning.stateOf(*configuration) == State::Measuring)
    return runOriginal();
  return measure();
}

static cl_int launchInRun(AgentState &state, const Launch &launch,
                          llvm::raw_ostream *log) {
  KernelRecord *record = state.kernels.find(launch.kernel);
  if (!state.tuning->run.countLaunch() || isIrregular(launch))
    return enqueue(launch);
  if (!record) {
    tellProgramOf(*state.tuning, state, launch.kernel,
                  deviceOfQueue(launch.queue));
    return enqueue(launch);
  }
  return TuneLaunch(state, *record, launch, log).run();
}

cl_int corvane::launchForTuning(AgentState &state, const Launch &launch,
                                llvm::raw_ostream *log) {
  const cl_int status = launchInRun(state, launch, log);
  if (status != CL_SUCCESS)
    reportClError(CallSite::Launch, status);
  return status;
}
