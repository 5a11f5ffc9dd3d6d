// The yardsticks: functions that do part of what a hook has to do.

#include "bench/hooks/Cases.h"

#include "agent/AgentState.h"
#include "bench/null/NullRuntime.h"

#include <mutex>

using namespace corvane;
using namespace corvane::bench;

const char *bench::nameOf(Way way) {
  switch (way) {
  case Way::Runtime:
    return "runtime";
  case Way::Pass:
    return "pass";
  case Way::Lock:
    return "lock";
  case Way::Agent:
    return "agent";
  }
  return "";
}

static cl_int CL_API_CALL passArgument(cl_kernel kernel, cl_uint index,
                                       size_t size, const void *value) {
  return bare().clSetKernelArg(kernel, index, size, value);
}

static cl_int CL_API_CALL passArgumentLocked(cl_kernel kernel, cl_uint index,
                                             size_t size, const void *value) {
  const std::lock_guard<llvm::sys::Mutex> guard(agentLock());
  return bare().clSetKernelArg(kernel, index, size, value);
}

static cl_int CL_API_CALL passLaunch(cl_command_queue queue, cl_kernel kernel,
                                     cl_uint dimensions, const size_t *offset,
                                     const size_t *global, const size_t *local,
                                     cl_uint waitCount,
                                     const cl_event *waitList,
                                     cl_event *event) {
  return bare().clEnqueueNDRangeKernel(queue, kernel, dimensions, offset,
                                       global, local, waitCount, waitList,
                                       event);
}

static cl_int CL_API_CALL passLaunchLocked(
    cl_command_queue queue, cl_kernel kernel, cl_uint dimensions,
    const size_t *offset, const size_t *global, const size_t *local,
    cl_uint waitCount, const cl_event *waitList, cl_event *event) {
  const std::lock_guard<llvm::sys::Mutex> guard(agentLock());
  return bare().clEnqueueNDRangeKernel(queue, kernel, dimensions, offset,
                                       global, local, waitCount, waitList,
                                       event);
}

decltype(DispatchTable::clSetKernelArg) bench::setterBy(Way way) {
  switch (way) {
  case Way::Runtime:
    return bare().clSetKernelArg;
  case Way::Pass:
    return passArgument;
  case Way::Lock:
    return passArgumentLocked;
  case Way::Agent:
    return hooked().clSetKernelArg;
  }
  return nullptr;
}

decltype(DispatchTable::clEnqueueNDRangeKernel) bench::launcherBy(Way way) {
  switch (way) {
  case Way::Runtime:
    return bare().clEnqueueNDRangeKernel;
  case Way::Pass:
    return passLaunch;
  case Way::Lock:
    return passLaunchLocked;
  case Way::Agent:
    return hooked().clEnqueueNDRangeKernel;
  }
  return nullptr;
}
