// One line for each call that enqueues: of which kind it is.

#include "layer/WatchedCommands.h"

#include "layer/CommandKinds.h"
#include "layer/Enqueueing.h"
#include "layer/KernelMemory.h"
#include "layer/KernelReferences.h"
#include "layer/WatchedQuestions.h"

#include <tuple>
#include <type_traits>

using namespace corvane::layer;

using Calls = cl_icd_dispatch;

// What the application would call without the watch.
static Calls next;

namespace {
/// A call whose last arguments are a wait list and an event.
template <auto Entry, typename Kind, typename Function> struct Watched;
template <auto Entry, typename Kind, typename... Args>
struct Watched<Entry, Kind, cl_int(CL_API_CALL *)(Args...)> {
  static cl_int CL_API_CALL call(Args... args) {
    constexpr std::size_t count = sizeof...(Args);
    std::tuple<Args...> all(args...);
    Description description;
    description.request.queue = std::get<0>(all);
    Kind::describe(all, description);
    Enqueueing enqueueing(std::move(description.request),
                          {std::get<count - 3>(all), std::get<count - 2>(all),
                           std::get<count - 1>(all)},
                          description.blocking, false);
    std::get<count - 3>(all) = enqueueing.arguments().waitCount;
    std::get<count - 2>(all) = enqueueing.arguments().waitList;
    std::get<count - 1>(all) = enqueueing.arguments().event;
    return enqueueing.returned(std::apply(next.*Entry, all));
  }
};

/// A call that maps: an error code follows the event.
template <auto Entry, typename Function> struct WatchedMap;
template <auto Entry, typename... Args>
struct WatchedMap<Entry, void *(CL_API_CALL *)(Args...)> {
  static void *CL_API_CALL call(Args... args) {
    constexpr std::size_t count = sizeof...(Args);
    std::tuple<Args...> all(args...);
    Description description;
    description.request.queue = std::get<0>(all);
    Transfer::describe(all, description);
    Enqueueing enqueueing(std::move(description.request),
                          {std::get<count - 4>(all), std::get<count - 3>(all),
                           std::get<count - 2>(all)},
                          description.blocking, false);
    cl_int status = CL_SUCCESS;
    cl_int *wanted = std::get<count - 1>(all);
    std::get<count - 4>(all) = enqueueing.arguments().waitCount;
    std::get<count - 3>(all) = enqueueing.arguments().waitList;
    std::get<count - 2>(all) = enqueueing.arguments().event;
    std::get<count - 1>(all) = &status;
    void *region = std::apply(next.*Entry, all);
    if (status == CL_SUCCESS)
      noteMap(std::get<1>(all));
    (void)enqueueing.returned(status);
    if (wanted)
      *wanted = status;
    return region;
  }
};
} // namespace

template <auto Entry, typename Kind> static void watch(Calls &calls) {
  using Function = std::remove_reference_t<decltype(calls.*Entry)>;
  replace(calls.*Entry, &Watched<Entry, Kind, Function>::call);
}

template <auto Entry> static void watchMap(Calls &calls) {
  using Function = std::remove_reference_t<decltype(calls.*Entry)>;
  replace(calls.*Entry, &WatchedMap<Entry, Function>::call);
}

static cl_int CL_API_CALL unmap(cl_command_queue queue, cl_mem object,
                                void *region, cl_uint waitCount,
                                const cl_event *waitList, cl_event *event) {
  CommandRequest request;
  request.queue = queue;
  request.memory.add(object);
  Enqueueing enqueueing(std::move(request), {waitCount, waitList, event}, false,
                        false);
  const EnqueueArguments &give = enqueueing.arguments();
  const cl_int status = enqueueing.returned(next.clEnqueueUnmapMemObject(
      queue, object, region, give.waitCount, give.waitList, give.event));
  // As a command in flight it is in the way from here on.
  if (status == CL_SUCCESS)
    noteUnmap(object);
  return status;
}

// OpenCL 1.0's calls that order a queue.
static cl_int CL_API_CALL mark(cl_command_queue queue, cl_event *event) {
  CommandRequest request;
  request.queue = queue;
  request.waitsForQueue = true;
  Enqueueing enqueueing(std::move(request), {0, nullptr, event}, false, false);
  return enqueueing.returned(next.clEnqueueMarker(queue, event));
}

// These have no event: what they wait for holds the queue, and not they.
static cl_int CL_API_CALL bar(cl_command_queue queue) {
  CommandRequest request;
  request.queue = queue;
  request.waitsForQueue = request.holdsQueue = true;
  Enqueueing enqueueing(std::move(request), {0, nullptr, nullptr}, true, false);
  return enqueueing.returned(next.clEnqueueBarrier(queue));
}

static cl_int CL_API_CALL waitInQueue(cl_command_queue queue, cl_uint count,
                                      const cl_event *events) {
  CommandRequest request;
  request.queue = queue;
  request.holdsQueue = true;
  Enqueueing enqueueing(std::move(request), {count, events, nullptr}, true,
                        false);
  return enqueueing.returned(next.clEnqueueWaitForEvents(queue, count, events));
}

// Kernels without variants run alone anyway, and nothing is saved for them.
static bool hasVariants(cl_kernel kernel) {
  return !kernels().read(kernel).kept.empty();
}

static cl_int CL_API_CALL launch(cl_command_queue queue, cl_kernel kernel,
                                 cl_uint workDim, const size_t *globalOffset,
                                 const size_t *globalSize,
                                 const size_t *localSize, cl_uint waitCount,
                                 const cl_event *waitList, cl_event *event) {
  const bool wantsTuning = hasVariants(kernel);
  CommandRequest request;
  request.queue = queue;
  request.memory = memoryOf(kernel);
  Enqueueing enqueueing(std::move(request), {waitCount, waitList, event}, false,
                        wantsTuning);
  // Past the agent the application's kernel runs as it would alone.
  const Calls &calls =
      wantsTuning && !enqueueing.mayBeTuned() ? runtime() : next;
  const EnqueueArguments &give = enqueueing.arguments();
  return enqueueing.returned(calls.clEnqueueNDRangeKernel(
      queue, kernel, workDim, globalOffset, globalSize, localSize,
      give.waitCount, give.waitList, give.event));
}

static cl_int CL_API_CALL finish(cl_command_queue queue) {
  const std::vector<CommandRef> commands = commandsInFlight().commandsOf(queue);
  const cl_int status = next.clFinish(queue);
  if (status == CL_SUCCESS)
    commandsInFlight().areOver(commands);
  return status;
}

static void watchTransfers(Calls &calls) {
  watch<&Calls::clEnqueueReadBuffer, Transfer>(calls);
  watch<&Calls::clEnqueueWriteBuffer, Transfer>(calls);
  watch<&Calls::clEnqueueReadBufferRect, Transfer>(calls);
  watch<&Calls::clEnqueueWriteBufferRect, Transfer>(calls);
  watch<&Calls::clEnqueueReadImage, Transfer>(calls);
  watch<&Calls::clEnqueueWriteImage, Transfer>(calls);
  watch<&Calls::clEnqueueCopyBuffer, TwoObjects>(calls);
  watch<&Calls::clEnqueueCopyBufferRect, TwoObjects>(calls);
  watch<&Calls::clEnqueueCopyImage, TwoObjects>(calls);
  watch<&Calls::clEnqueueCopyImageToBuffer, TwoObjects>(calls);
  watch<&Calls::clEnqueueCopyBufferToImage, TwoObjects>(calls);
  watch<&Calls::clEnqueueFillBuffer, OneObject>(calls);
  watch<&Calls::clEnqueueFillImage, OneObject>(calls);
  watch<&Calls::clEnqueueMigrateMemObjects, ObjectList>(calls);
  watchMap<&Calls::clEnqueueMapBuffer>(calls);
  watchMap<&Calls::clEnqueueMapImage>(calls);
  replace(calls.clEnqueueUnmapMemObject, &unmap);
}

static void watchSharedMemory(Calls &calls) {
  watch<&Calls::clEnqueueSVMFree, SharedFree>(calls);
  watch<&Calls::clEnqueueSVMMemcpy, SharedTransfer>(calls);
  watch<&Calls::clEnqueueSVMMemFill, Shared>(calls);
  watch<&Calls::clEnqueueSVMMap, SharedTransfer>(calls);
  watch<&Calls::clEnqueueSVMUnmap, Shared>(calls);
  watch<&Calls::clEnqueueSVMMigrateMem, Shared>(calls);
  watch<&Calls::clEnqueueAcquireGLObjects, ObjectList>(calls);
  watch<&Calls::clEnqueueReleaseGLObjects, ObjectList>(calls);
  watch<&Calls::clEnqueueAcquireEGLObjectsKHR, ObjectList>(calls);
  watch<&Calls::clEnqueueReleaseEGLObjectsKHR, ObjectList>(calls);
}

static void watchRunsAndOrder(Calls &calls) {
  replace(calls.clEnqueueNDRangeKernel, &launch);
  watch<&Calls::clEnqueueTask, Task>(calls);
  watch<&Calls::clEnqueueNativeKernel, NativeKernel>(calls);
  watch<&Calls::clEnqueueMarkerWithWaitList, Marker>(calls);
  watch<&Calls::clEnqueueBarrierWithWaitList, Barrier>(calls);
  replace(calls.clEnqueueMarker, &mark);
  replace(calls.clEnqueueBarrier, &bar);
  replace(calls.clEnqueueWaitForEvents, &waitInQueue);
  replace(calls.clFinish, &finish);
}

void corvane::layer::watchCommands(cl_icd_dispatch &calls) {
  next = calls;
  followMemoryObjects(calls, next);
  followKernelMemory(calls, next);
  watchTransfers(calls);
  watchSharedMemory(calls);
  watchRunsAndOrder(calls);
  watchQuestions(calls, next);
}
