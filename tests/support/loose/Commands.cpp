// Transfers and launches of the loose runtime. Only wait lists order two
// commands.

#include "tests/support/loose/Entries.h"
#include "tests/support/loose/LaunchPlan.h"
#include "tests/support/loose/Objects.h"

#include <algorithm>
#include <cstring>
#include <thread>

using namespace corvane;
using namespace corvane::test::loose;

namespace {
/// The arguments that all commands have.
struct Place {
  cl_command_queue queue;
  bool isBlocking;
  cl_uint waitCount;
  const cl_event *waitList;
  cl_event *event;
};

/// What is reported of a run; transfers have neither.
struct Report {
  std::string row;
  cl_ulong duration = 0; ///< nanoseconds
};
} // namespace

static cl_int enqueue(const Place &place, Report report,
                      const std::function<void()> &work) {
  const Queue &queue = *objectOf(place.queue);
  if ((queue.properties & CL_QUEUE_PROFILING_ENABLE) == 0)
    queue.shared.reportMistake("a queue has no times");
  auto *made = new Event(queue.shared);
  made->row = std::move(report.row);
  made->started = 10 * report.duration;
  made->ended = made->started + report.duration;
  const Ref<Event> event(made);
  if (place.event)
    *place.event = handleOf<cl_event>(made);
  else
    made->release();

  std::vector<Ref<Event>> waits;
  for (cl_uint i = 0; i != place.waitCount; ++i)
    waits.emplace_back(objectOf(place.waitList[i]));
  queue.shared.submit({[waits] {
                         return std::all_of(
                             waits.begin(), waits.end(),
                             [](const auto &wait) { return wait->isOver(); });
                       },
                       [event, work] {
                         work();
                         event->complete();
                       }});
  while (place.isBlocking && !made->isOver())
    std::this_thread::yield();
  return CL_SUCCESS;
}

static cl_int CL_API_CALL read(cl_command_queue queue, cl_mem handle,
                               cl_bool isBlocking, size_t offset, size_t size,
                               void *to, cl_uint waitCount,
                               const cl_event *waitList, cl_event *event) {
  const Ref<Buffer> buffer(objectOf(handle));
  return enqueue(
      {queue, isBlocking != CL_FALSE, waitCount, waitList, event}, {},
      [=] { std::memcpy(to, buffer->words.data() + offset / 4, size); });
}

static cl_int CL_API_CALL write(cl_command_queue queue, cl_mem handle,
                                cl_bool isBlocking, size_t offset, size_t size,
                                const void *from, cl_uint waitCount,
                                const cl_event *waitList, cl_event *event) {
  const Ref<Buffer> buffer(objectOf(handle));
  return enqueue({queue, isBlocking != CL_FALSE, waitCount, waitList, event},
                 {}, [=] {
                   std::memcpy(buffer->words.data() + offset / 4, from, size);
                   if (buffer->shared.behaviour.writesAreTruth)
                     buffer->truth = buffer->words;
                 });
}

static cl_int CL_API_CALL launch(cl_command_queue queue, cl_kernel handle,
                                 cl_uint dimensions, const size_t *,
                                 const size_t *global, const size_t *local,
                                 cl_uint waitCount, const cl_event *waitList,
                                 cl_event *event) {
  const Kernel &kernel = *objectOf(handle);
  SharedState &shared = kernel.shared;
  if (shared.behaviour.beforeLaunch)
    shared.behaviour.beforeLaunch();
  const LaunchPlan plan(kernel, dimensions, global, local);
  if (!plan.isComplete())
    return CL_INVALID_KERNEL_ARGS;
  Report report;
  report.duration = shared.nextDuration();
  if (shared.behaviour.remembersRuns)
    report.row = plan.row(report.duration);
  return enqueue({queue, false, waitCount, waitList, event}, std::move(report),
                 [plan] { plan.run(); });
}

static cl_int CL_API_CALL mark(cl_command_queue queue, cl_uint waitCount,
                               const cl_event *waitList, cl_event *event) {
  return enqueue({queue, false, waitCount, waitList, event}, {}, [] {});
}

static cl_int CL_API_CALL flush(cl_command_queue) { return CL_SUCCESS; }

void corvane::test::loose::addCommands(DispatchTable &table) {
  table.clEnqueueReadBuffer = read;
  table.clEnqueueWriteBuffer = write;
  table.clEnqueueNDRangeKernel = launch;
  table.clEnqueueMarkerWithWaitList = mark;
  table.clFlush = flush;
}
