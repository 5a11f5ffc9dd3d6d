// Measures completed runs on threads of the runtime.

#include "launch/TimingTicket.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "base/ForkedChild.h"
#include "session/LogAppender.h"

#include <new>
#include <utility>

using namespace corvane;

// Nanoseconds on the device; 0, after a report, if the runtime does not tell.
static std::uint64_t measure(cl_event event) {
  cl_ulong start = 0;
  cl_ulong end = 0;
  if (const cl_int status = runtime().clGetEventProfilingInfo(
          event, CL_PROFILING_COMMAND_START, sizeof start, &start, nullptr)) {
    reportClError(CallSite::ProfilingStart, status);
    return 0;
  }
  if (const cl_int status = runtime().clGetEventProfilingInfo(
          event, CL_PROFILING_COMMAND_END, sizeof end, &end, nullptr)) {
    reportClError(CallSite::ProfilingEnd, status);
    return 0;
  }
  return end - start;
}

// Unlocked: the thread that holds the agent lock may be waiting for the
// runtime, and this is a thread of the runtime's. The status is not looked at,
// because a run that failed took its time as well.
static void CL_CALLBACK runCompleted(cl_event event, cl_int, void *userData) {
  if (inForkedChild())
    return;
  const std::unique_ptr<TimingTicket> ticket(
      static_cast<TimingTicket *>(userData));
  try {
    recordTiming(*ticket->history, *ticket->record, std::move(ticket->version),
                 measure(event));
  } catch (const std::bad_alloc &) {
    // An exception would end the process, because the thread is the runtime's.
    // The row is lost instead.
  }
}

cl_int corvane::timeRun(cl_event event, std::unique_ptr<TimingTicket> &ticket) {
  const auto setCallback = runtime().clSetEventCallback;
  if (!setCallback)
    return CL_INVALID_OPERATION;

  // The callback may run, and end the ticket, before the call returns.
  TimingTicket *handedOver = ticket.release();
  const cl_int status =
      setCallback(event, CL_COMPLETE, runCompleted, handedOver);
  if (status != CL_SUCCESS)
    ticket.reset(handedOver);
  return status;
}
