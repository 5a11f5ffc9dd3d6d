// The moves that launch, and those with the events of launches.

#include "tests/fuzz/sequence/Play.h"

#include <algorithm>
#include <array>

using namespace corvane;
using namespace corvane::fuzz;

namespace {
struct Range {
  cl_uint workDim = 1;
  std::array<std::size_t, 3> global{};
  std::array<std::size_t, 3> local{};
  bool hasGlobal = true;
  bool hasLocal = false;
};
} // namespace

static Range chooseRange(Input &input) {
  constexpr std::size_t globals[] = {64, 1024, 48, 510, 1, 0, 4096, 7};
  constexpr std::size_t locals[] = {16, 64, 8, 4, 1, 0, 3, 256};
  Range range;
  const std::size_t kind = input.below(16);
  range.workDim = kind < 4 ? static_cast<cl_uint>(kind) : 1;
  range.hasGlobal = kind != 5;
  if (kind == 6)
    range.workDim = 4;
  for (std::size_t &size : range.global)
    size = globals[input.below(std::size(globals))];
  range.hasLocal = input.flag();
  if (range.hasLocal)
    for (std::size_t &size : range.local)
      size = locals[input.below(std::size(locals))];
  return range;
}

// A launch may wait for the event of the one before. In autotuning mode it has
// to, if both may run at the same time.
static std::vector<cl_event> chooseWaitList(Play &play, bool &inOrder) {
  std::vector<cl_event> list;
  const bool alone = play.runtime.waiting().empty();
  const bool afterLast = play.input.below(4) != 1 && !play.events.empty();
  if (afterLast && play.lastRunHasEvent)
    list.push_back(play.events.back());
  inOrder = alone || (afterLast && play.lastRunHasEvent);
  if (play.input.below(8) == 1 && !play.userEvents.empty())
    list.push_back(*play.pick(play.userEvents));
  return list;
}

// Counts a run. A runtime that is not late has run everything when the call
// returns, except commands that wait for an event of the application's.
static void countRun(Play &play, const HeldKernel &kernel) {
  for (const auto &[index, buffer] : kernel.buffers)
    for (HeldBuffer &held : play.buffers)
      if (buffer && held.handle == buffer && index < kernel.argumentCount)
        ++held.value;
}

static void checkNormal(const Play &play, cl_int status, cl_event event) {
  const Heard run = play.onlyCall("clEnqueueNDRangeKernel");
  check(status == run.status, "the runtime's status is returned");
  check(event == run.event, "the runtime's event is handed out");
}

// Checks that variants and then the kernel were launched, and each run watched.
static void checkTuning(Play &play, const HeldKernel &kernel, cl_int status,
                        cl_event event) {
  const auto runs = play.recorder.heard("clEnqueueNDRangeKernel");
  if (!play.hasState) {
    check(runs.empty() && status == CL_SUCCESS, "after a flush nothing runs");
    return;
  }
  check(!runs.empty() && runs.back().handle == kernel.handle,
        "the application's kernel comes last");
  const auto ofKernel = [&](const Heard &run) {
    return run.handle == kernel.handle;
  };
  check(std::count_if(runs.begin(), runs.end(), ofKernel) == 1,
        "the application's kernel runs once");
  check(status == runs.back().status || play.failing,
        "the status is that of the application's kernel");
  check(!event || event == runs.back().event,
        "the event is that of the application's kernel");

  const auto started =
      std::count_if(runs.begin(), runs.end(),
                    [](const Heard &run) { return run.status == CL_SUCCESS; });
  const auto watched = play.recorder.heard("clSetEventCallback").size();
  check(watched == 0 || play.failing ||
            watched == static_cast<std::size_t>(started),
        "all runs are watched, or none");
  play.watchedRuns += watched;
}

void corvane::fuzz::launch(Play &play) {
  HeldKernel *kernel = play.pick(play.kernels);
  if (!kernel || kernel->pointsNowhere)
    return;
  const Range range = chooseRange(play.input);
  bool inOrder = true;
  const std::vector<cl_event> waitList = chooseWaitList(play, inOrder);
  const bool wantsEvent = play.input.below(4) != 1;
  const cl_command_queue *queue =
      play.input.below(4) == 1 ? play.pick(play.queues) : nullptr;

  cl_event event = nullptr;
  const cl_int status = play.cl().clEnqueueNDRangeKernel(
      queue ? *queue : play.runtime.queue(), kernel->handle, range.workDim,
      nullptr, range.hasGlobal ? range.global.data() : nullptr,
      range.hasLocal ? range.local.data() : nullptr,
      static_cast<cl_uint>(waitList.size()),
      waitList.empty() ? nullptr : waitList.data(),
      wantsEvent ? &event : nullptr);
  if (play.tuning)
    checkTuning(play, *kernel, status, event);
  else
    checkNormal(play, status, event);

  if (event)
    play.events.push_back(event);
  const bool ran = !play.recorder.heard("clEnqueueNDRangeKernel").empty();
  if (status != CL_SUCCESS || !ran)
    return;
  play.lastRunHasEvent = event != nullptr;
  play.contentsUnknown |= play.tuning && !inOrder;
  countRun(play, *kernel);
}

void corvane::fuzz::releaseEvent(Play &play) {
  const cl_event *event = play.pick(play.events);
  if (!event)
    return;
  play.lastRunHasEvent &= event != &play.events.back();
  if (play.cl().clReleaseEvent(*event) == CL_SUCCESS)
    Play::drop(play.events, event);
}
