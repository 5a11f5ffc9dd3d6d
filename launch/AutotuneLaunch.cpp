// The steps of an autotuning launch.

#include "launch/AutotuneLaunch.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/BufferSnapshot.h"
#include "launch/EventChain.h"
#include "launch/LaunchBuffers.h"
#include "launch/TimingTicket.h"
#include "launch/VariantChoice.h"
#include "programs/CreatedKernels.h"
#include "session/LaunchHistory.h"

#include <utility>

using namespace corvane;

namespace {
/// One autotuned launch while its commands are being enqueued.
class AutotuneLaunch {
public:
  AutotuneLaunch(AgentState &agentState, KernelRecord &kernelRecord,
                 const Launch &asked, std::optional<cl_uint> argumentsOfKernel);

  cl_int runVariantsAndKernel(llvm::raw_ostream *log);
  cl_int runKernelAlone();

private:
  /// A variant that takes the launch, and what its completion needs.
  struct Candidate {
    VariantChoice choice;
    std::unique_ptr<TimingTicket> ticket;
  };
  std::vector<Candidate> findCandidates();
  void addToHistory();
  bool runVariant(const BufferSnapshot &inputs, Candidate candidate);
  void enqueueVariant(Candidate candidate);
  cl_int runKernel(std::unique_ptr<TimingTicket> ticket);
  std::unique_ptr<TimingTicket> makeTicket(std::string version) const;
  void shareEvents(const LaunchBuffers &buffers,
                   const std::vector<Candidate> &candidates,
                   TimingTicket &kernelsTicket);

  AgentState &state;
  KernelRecord &record;
  const Launch &launch;
  const std::optional<cl_uint> kernelArguments;
  const LaunchSizes sizes;
  EventChain chain;
  std::shared_ptr<LaunchRecord> timings;
  bool transfersEnqueued = false;
  bool buffersChanged = false; ///< by a variant, and not restored yet
};

/// The event of the application's own run: the application's, if it asked for
/// one, or else one that is released as soon as the run is watched.
class BaselineEvent {
public:
  explicit BaselineEvent(cl_event *asked) : wanted(asked) {}
  ~BaselineEvent() {
    if (own)
      (void)runtime().clReleaseEvent(own);
  }
  BaselineEvent(const BaselineEvent &) = delete;
  BaselineEvent &operator=(const BaselineEvent &) = delete;

  cl_event *slot() { return wanted ? wanted : &own; }
  cl_event get() const { return wanted ? *wanted : own; }

private:
  cl_event *wanted;
  cl_event own = nullptr;
};
} // namespace

static std::shared_ptr<LaunchRecord> describe(LaunchHistory &history,
                                              const KernelRecord &record,
                                              const LaunchSizes &sizes) {
  return history.makeRecord(makeLaunchKey(record.name(), sizes));
}

AutotuneLaunch::AutotuneLaunch(AgentState &agentState,
                               KernelRecord &kernelRecord, const Launch &asked,
                               std::optional<cl_uint> argumentsOfKernel)
    : state(agentState), record(kernelRecord), launch(asked),
      kernelArguments(argumentsOfKernel), sizes(sizesOf(asked)),
      chain(asked.numEventsInWaitList, asked.eventWaitList),
      timings(describe(*agentState.launchRecords, kernelRecord, sizes)) {}

void AutotuneLaunch::addToHistory() {
  LaunchHistory &history = *state.launchRecords;
  std::lock_guard<std::mutex> lock(history.lock);
  history.records.push_back(timings);
}

std::unique_ptr<TimingTicket>
AutotuneLaunch::makeTicket(std::string version) const {
  auto ticket = std::make_unique<TimingTicket>();
  ticket->history = state.launchRecords;
  ticket->record = timings;
  ticket->version = std::move(version);
  return ticket;
}

std::vector<AutotuneLaunch::Candidate> AutotuneLaunch::findCandidates() {
  std::vector<Candidate> candidates;
  for (const VariantChoice &choice : variantsToAutotune(record, launch))
    candidates.push_back(
        {choice, makeTicket(choice.variant->description->spec)});
  return candidates;
}

// The application's run is over last and gives the events back then. Should it
// not be launched or watched, the variants' runs do, or the launch itself.
void AutotuneLaunch::shareEvents(const LaunchBuffers &buffers,
                                 const std::vector<Candidate> &candidates,
                                 TimingTicket &kernelsTicket) {
  const std::size_t count = buffers.list().size();
  // Restores of a variant that fail are tried once more at the end.
  chain.reserve(candidates.size() * (2 * count + 1) + count);
  for (const Candidate &candidate : candidates)
    candidate.ticket->events = chain.events();
  kernelsTicket.events = chain.events();
}

// A failed launch leaves the chain as it is.
void AutotuneLaunch::enqueueVariant(Candidate candidate) {
  cl_event run = nullptr;
  const cl_int status = runtime().clEnqueueNDRangeKernel(
      launch.queue, candidate.choice.variant->kernel, launch.workDim,
      launch.globalOffset, candidate.choice.range.global.data(),
      candidate.choice.range.localSize(), chain.waitCount(), chain.waitList(),
      &run);
  if (status != CL_SUCCESS)
    return;
  (void)timeRun(run, candidate.ticket);
  chain.advance(run);
}

// False if the variant was left out. One that still has an old argument could
// write to a buffer that is not saved.
bool AutotuneLaunch::runVariant(const BufferSnapshot &inputs,
                                Candidate candidate) {
  if (buffersChanged)
    return false;
  VariantKernel &variant = *candidate.choice.variant;
  if (!record.arguments.replay(variant.kernel, variant.settingsSeen)) {
    variant.settingsSeen = 0; // the next launch tries all of them again
    return false;
  }
  if (!giveGroupCounts(variant.kernel, launch, kernelArguments))
    return false;
  transfersEnqueued = true;
  if (!inputs.save(launch.queue, chain))
    return false;
  enqueueVariant(std::move(candidate));
  buffersChanged = !inputs.restore(launch.queue, chain);
  return true;
}

// The application's own run comes last: when it is over, all transfers are.
cl_int AutotuneLaunch::runKernel(std::unique_ptr<TimingTicket> ticket) {
  // It has these values already. Kept on purpose: all versions are set up by
  // the same calls.
  (void)record.arguments.replay(record.kernel, record.settingsSeen);
  BaselineEvent event(launch.event);
  Launch chained = launch;
  chained.numEventsInWaitList = chain.waitCount();
  chained.eventWaitList = chain.waitList();
  chained.event = event.slot();
  const cl_int status = enqueue(chained);
  if (status == CL_SUCCESS)
    (void)timeRun(event.get(), ticket);
  if (ticket)
    leakOnPurpose(ticket->keptAlive);
  return status;
}

// All memory is got before the first command is enqueued. After a variant there
// is no way back: its restores and the kernel have to follow.
cl_int AutotuneLaunch::runVariantsAndKernel(llvm::raw_ostream *log) {
  auto ticket = makeTicket({});
  const LaunchBuffers buffers(state, record);
  std::vector<Candidate> candidates;
  if (buffers.areComplete())
    candidates = findCandidates();
  std::optional<std::vector<HostCopy>> memory;
  if (!candidates.empty())
    memory = hostMemoryOf(state, buffers);
  if (!memory)
    candidates.clear();
  const BufferSnapshot inputs(
      buffers, std::move(memory).value_or(std::vector<HostCopy>()));
  ticket->keptAlive = inputs.hostMemory();
  if (!candidates.empty())
    shareEvents(buffers, candidates, *ticket);
  timings->timings.reserve(candidates.size() + 1);
  addToHistory();

  unsigned tested = 0;
  for (Candidate &candidate : candidates)
    if (runVariant(inputs, std::move(candidate)))
      ++tested;
  if (log)
    *log << tested << " kernel(s)  out of " << record.variants.size()
         << " are tested in addition to the original kernel\n";
  if (buffersChanged)
    (void)inputs.restore(launch.queue, chain);
  if (!transfersEnqueued)
    ticket->keptAlive.clear();
  return runKernel(std::move(ticket));
}

cl_int AutotuneLaunch::runKernelAlone() {
  auto ticket = makeTicket({});
  timings->timings.reserve(1);
  addToHistory();
  BaselineEvent event(launch.event);
  Launch watched = launch;
  watched.event = event.slot();
  cl_int status = enqueue(watched);
  if (status != CL_SUCCESS)
    return status;

  status = timeRun(event.get(), ticket);
  if (status != CL_SUCCESS)
    reportClError(CallSite::BaselineCallback, status);
  return status;
}

static cl_int autotune(AgentState &state, KernelRecord &record,
                       const Launch &launch,
                       std::optional<cl_uint> argumentsOfKernel,
                       llvm::raw_ostream *log) {
  AutotuneLaunch autotuned(state, record, launch, argumentsOfKernel);
  if (!record.variants.empty())
    return autotuned.runVariantsAndKernel(log);
  if (log)
    *log << "No Corvane's kernel available\n";
  return autotuned.runKernelAlone();
}

cl_int corvane::launchForAutotuning(AgentState *state, const Launch &launch,
                                    llvm::raw_ostream *log) {
  if (log)
    *log << "EnqueueNDRange called for " << readKernelName(launch.kernel)
         << " in autotuning mode\n";
  const std::optional<cl_uint> argumentsOfKernel = argumentCount(launch.kernel);

  // Kept on purpose: once the results are written nothing is launched; only
  // clFlush is called.
  cl_int status = CL_SUCCESS;
  if (state) {
    KernelRecord *record = state->kernels.find(launch.kernel);
    if (!record)
      return enqueue(launch);
    status = autotune(*state, *record, launch, argumentsOfKernel, log);
  }
  (void)runtime().clFlush(launch.queue);
  if (status != CL_SUCCESS)
    reportClError(CallSite::AutotuneLaunch, status);
  return status;
}
