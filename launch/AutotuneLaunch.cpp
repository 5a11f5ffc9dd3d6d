// The sequence of an autotuning launch.

#include "launch/AutotuneLaunch.h"

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/DebugLog.h"
#include "agent/RuntimeTable.h"
#include "launch/ArgMirror.h"
#include "launch/BufferShadow.h"
#include "launch/EventChain.h"
#include "launch/KeptMemory.h"
#include "launch/TimingTicket.h"
#include "launch/VariantLaunch.h"
#include "programs/KernelName.h"

#include <utility>

using namespace corvane;

namespace {
/// One launch on its way.
class AutotuneLaunch {
public:
  AutotuneLaunch(AgentState &agentState, KernelRecord &kernelRecord,
                 const Launch &asked, std::optional<cl_uint> argumentsOfKernel);

  cl_int runVariantsAndKernel(llvm::raw_ostream &log);
  cl_int runKernelAlone();

private:
  bool accepts(const llvm::TransformedKernelAgent &variant,
               std::optional<VariantRange> &range) const;
  bool runVariant(const BufferShadow &shadow, cl_kernel variant,
                  const llvm::TransformedKernelAgent &transformed);
  void enqueueVariant(cl_kernel variant, const VariantRange &range,
                      std::string version);
  cl_int runKernel(std::vector<HostCopy> transfers);
  std::unique_ptr<TimingTicket> makeTicket(std::string version) const;

  AgentState &state;
  KernelRecord &record;
  const Launch &launch;
  const std::optional<cl_uint> kernelArguments;
  const Sizes local;
  EventChain chain;
  std::shared_ptr<LaunchRecord> timings;
  bool transfersEnqueued = false;
};

/// The event of the application's kernel: wanted by the application, or else
/// ours for as long as it takes to watch it.
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

static std::shared_ptr<LaunchRecord> listLaunch(LaunchHistory &history,
                                                const KernelRecord &record,
                                                const Launch &launch,
                                                const Sizes &local) {
  auto listed = std::make_shared<LaunchRecord>();
  listed->kernel = record.name;
  listed->workDim = launch.workDim;
  for (cl_uint d = 0; d < launch.workDim; ++d)
    listed->globalSize[d] = launch.globalSize[d];
  listed->localSize = local;
  std::lock_guard<std::mutex> lock(history.lock);
  history.records.push_back(listed);
  return listed;
}

AutotuneLaunch::AutotuneLaunch(AgentState &agentState,
                               KernelRecord &kernelRecord, const Launch &asked,
                               std::optional<cl_uint> argumentsOfKernel)
    : state(agentState), record(kernelRecord), launch(asked),
      kernelArguments(argumentsOfKernel), local(localCopy(asked)),
      chain(asked.numEventsInWaitList, asked.eventWaitList),
      timings(
          listLaunch(*agentState.launchRecords, kernelRecord, asked, local)) {}

std::unique_ptr<TimingTicket>
AutotuneLaunch::makeTicket(std::string version) const {
  auto ticket = std::make_unique<TimingTicket>();
  ticket->history = state.launchRecords;
  ticket->record = timings;
  ticket->version = std::move(version);
  return ticket;
}

bool AutotuneLaunch::accepts(const llvm::TransformedKernelAgent &variant,
                             std::optional<VariantRange> &range) const {
  range = rangeFor(variant, launch, local);
  return range && acceptsArguments(recordedArguments(record), variant);
}

// A failed launch leaves the chain as it is. The version name alone is carried
// to the log: the application's kernel is not timed here.
void AutotuneLaunch::enqueueVariant(cl_kernel variant,
                                    const VariantRange &range,
                                    std::string version) {
  // Made first: once the variant is on its way nothing may fail any more.
  auto ticket = makeTicket(std::move(version));
  cl_event run = nullptr;
  const cl_int status = runtime().clEnqueueNDRangeKernel(
      launch.queue, variant, launch.workDim, launch.globalOffset,
      range.global.data(), range.localSize(), chain.waitCount(),
      chain.waitList(), &run);
  if (status != CL_SUCCESS)
    return;
  (void)timeRun(run, ticket);
  chain.advance(run);
}

// False if the variant was passed over.
bool AutotuneLaunch::runVariant(
    const BufferShadow &shadow, cl_kernel variant,
    const llvm::TransformedKernelAgent &transformed) {
  std::optional<VariantRange> range;
  if (!variant || !shadow.isComplete() || !accepts(transformed, range))
    return false;
  replayArguments(record, variant);
  if (!giveGroupCounts(variant, launch, kernelArguments))
    return false;
  transfersEnqueued = true;
  if (!shadow.save(launch.queue, chain))
    return false;
  enqueueVariant(variant, *range,
                 transformed.llvm::TransformedKernel::specText());
  shadow.restore(launch.queue, chain);
  return true;
}

// The application's own run comes last: when it is over, so are all transfers.
cl_int AutotuneLaunch::runKernel(std::vector<HostCopy> transfers) {
  auto ticket = makeTicket({});
  ticket->keptAlive = std::move(transfers);
  replayArguments(record, record.kernel);
  BaselineEvent event(launch.event);
  Launch chained = launch;
  chained.numEventsInWaitList = chain.waitCount();
  chained.eventWaitList = chain.waitList();
  chained.event = event.slot();
  const cl_int status = enqueue(chained);
  chain.release();

  if (status == CL_SUCCESS)
    (void)timeRun(event.get(), ticket);
  if (ticket)
    keepForever(ticket->keptAlive);
  return status;
}

cl_int AutotuneLaunch::runVariantsAndKernel(llvm::raw_ostream &log) {
  const BufferShadow shadow(state, record);
  std::vector<HostCopy> transfers = shadow.hostCopies();
  unsigned tested = 0;
  unsigned examined = 0;
  for (const auto &[variant, transformed] : record.variantKernels) {
    ++examined;
    if (runVariant(shadow, variant, *transformed))
      ++tested;
  }
  if (isKept(log))
    log << tested << " kernel(s)  out of " << examined
        << " are tested in addition to the original kernel\n";
  if (!transfersEnqueued)
    transfers.clear();
  return runKernel(std::move(transfers));
}

cl_int AutotuneLaunch::runKernelAlone() {
  BaselineEvent event(launch.event);
  Launch watched = launch;
  watched.event = event.slot();
  cl_int status = enqueue(watched);
  if (status != CL_SUCCESS)
    return status;

  auto ticket = makeTicket({});
  status = timeRun(event.get(), ticket);
  if (status != CL_SUCCESS)
    reportClError(CallSite::BaselineCallback, status);
  return status;
}

static cl_int tune(AgentState &state, KernelRecord &record,
                   const Launch &launch,
                   std::optional<cl_uint> argumentsOfKernel,
                   llvm::raw_ostream &log) {
  AutotuneLaunch tuning(state, record, launch, argumentsOfKernel);
  if (!record.variantKernels.empty())
    return tuning.runVariantsAndKernel(log);
  if (isKept(log))
    log << "No Corvane's kernel available\n";
  return tuning.runKernelAlone();
}

cl_int corvane::launchForAutotuning(AgentState *state, const Launch &launch) {
  llvm::raw_ostream &log = debugLog();
  if (isKept(log))
    log << "EnqueueNDRange called for " << readKernelName(launch.kernel)
        << " in autotuning mode\n";
  const std::optional<cl_uint> argumentsOfKernel = argumentCount(launch.kernel);

  // Kept on purpose: after a flush nothing is launched, only flushed.
  cl_int status = CL_SUCCESS;
  if (state) {
    KernelRecord *record = state->kernels.find(launch.kernel);
    if (!record)
      return enqueue(launch);
    status = tune(*state, *record, launch, argumentsOfKernel, log);
  }
  (void)runtime().clFlush(launch.queue);
  if (status != CL_SUCCESS)
    reportClError(CallSite::AutotuneLaunch, status);
  return status;
}
