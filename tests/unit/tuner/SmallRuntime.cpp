// The entries of the small runtime.

#include "tests/unit/tuner/SmallRuntime.h"

#include "agent/RuntimeTable.h"

#include <cstring>

using namespace corvane;
using namespace corvane::test;

static SmallRuntime *current = nullptr;

namespace {
/// The event of one run.
struct Run {
  cl_ulong nanoseconds;
  bool succeeded;
};

template <typename Object, typename Handle> Object &from(Handle handle) {
  return *reinterpret_cast<Object *>(handle);
}
} // namespace

static cl_int CL_API_CALL launch(cl_command_queue, cl_kernel kernel, cl_uint,
                                 const size_t *, const size_t *, const size_t *,
                                 cl_uint, const cl_event *, cl_event *event) {
  SmallKernel &started = from<SmallKernel>(kernel);
  if (!started.launches)
    return CL_INVALID_KERNEL_ARGS;
  ++started.runs;
  if (started.body)
    started.body();
  ++current->openEvents;
  *event = reinterpret_cast<cl_event>(
      new Run{started.nanoseconds, started.succeeds});
  return CL_SUCCESS;
}

static cl_int CL_API_CALL waitFor(cl_uint, const cl_event *events) {
  return from<Run>(events[0]).succeeded
             ? CL_SUCCESS
             : CL_EXEC_STATUS_ERROR_FOR_EVENTS_IN_WAIT_LIST;
}

static cl_int CL_API_CALL tellTime(cl_event event, cl_profiling_info name,
                                   size_t, void *value, size_t *) {
  if (!current->hasTimes)
    return CL_PROFILING_INFO_NOT_AVAILABLE;
  const cl_ulong time = name == CL_PROFILING_COMMAND_END
                            ? 5000 + from<Run>(event).nanoseconds
                            : 5000;
  std::memcpy(value, &time, sizeof time);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL read(cl_command_queue, cl_mem memory, cl_bool,
                               size_t offset, size_t size, void *to, cl_uint,
                               const cl_event *, cl_event *) {
  const auto *bytes =
      reinterpret_cast<const char *>(from<SmallBuffer>(memory).values.data());
  std::memcpy(to, bytes + offset, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL write(cl_command_queue, cl_mem memory, cl_bool,
                                size_t offset, size_t size, const void *bytes,
                                cl_uint, const cl_event *, cl_event *) {
  if (current->onWrite)
    current->onWrite();
  if (!current->writesWork)
    return CL_OUT_OF_RESOURCES;
  auto *to = reinterpret_cast<char *>(from<SmallBuffer>(memory).values.data());
  std::memcpy(to + offset, bytes, size);
  return CL_SUCCESS;
}

// Runs have addresses of their own; every other event is the test's.
static cl_int CL_API_CALL releaseRun(cl_event event) {
  delete reinterpret_cast<Run *>(event);
  --current->openEvents;
  return CL_SUCCESS;
}

static SmallUserEvent *userEvent = nullptr;

static cl_int CL_API_CALL setStatus(cl_event event, cl_int status) {
  userEvent = &from<SmallUserEvent>(event);
  userEvent->statuses.push_back(status);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL releaseEvent(cl_event event) {
  if (reinterpret_cast<SmallUserEvent *>(event) != userEvent)
    return releaseRun(event);
  --userEvent->references;
  return CL_SUCCESS;
}

SmallRuntime::SmallRuntime() {
  current = this;
  DispatchTable table{};
  table.clEnqueueNDRangeKernel = launch;
  table.clWaitForEvents = waitFor;
  table.clGetEventProfilingInfo = tellTime;
  table.clEnqueueReadBuffer = read;
  table.clEnqueueWriteBuffer = write;
  table.clSetUserEventStatus = setStatus;
  table.clReleaseEvent = releaseEvent;
  table.clReleaseMemObject = [](cl_mem memory) -> cl_int {
    --from<SmallBuffer>(memory).references;
    return CL_SUCCESS;
  };
  table.clReleaseKernel = [](cl_kernel kernel) -> cl_int {
    --from<SmallKernel>(kernel).references;
    return CL_SUCCESS;
  };
  table.clReleaseCommandQueue = [](cl_command_queue) -> cl_int {
    --current->queueReferences;
    return CL_SUCCESS;
  };
  saveRuntimeTable(table);
}

SmallRuntime::~SmallRuntime() {
  saveRuntimeTable(DispatchTable{});
  userEvent = nullptr;
  current = nullptr;
}
