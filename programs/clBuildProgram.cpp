// The hook of a build: has the program built, and finds the variants in it.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/Flags.h"
#include "agent/RuntimeTable.h"
#include "programs/BuildInProgress.h"
#include "programs/BuiltDevices.h"
#include "programs/Hooks.h"

using namespace corvane;

// Whether no build log complains of a variant. False for a program that is
// null.
static bool screenBuiltDevices(cl_program program, cl_uint numDevices,
                               const cl_device_id *deviceList) {
  if (deviceList)
    return program && screenBuild(program, {deviceList, numDevices});

  DeviceList devices;
  if (const cl_int status = programDevices(program, devices))
    reportClError(CallSite::BuildDevices, status);
  return program && screenBuild(program, devices);
}

namespace {
enum class AfterBuild { Collect, BuildAgain, Leave };
} // namespace

static AfterBuild lookAtLogs(cl_program program, cl_uint numDevices,
                             const cl_device_id *deviceList) {
  AgentGuard guard;
  if (!agentState())
    return AfterBuild::Leave;
  if (screenBuiltDevices(program, numDevices, deviceList))
    return AfterBuild::Collect;
  return autotuneOutput() ? AfterBuild::BuildAgain : AfterBuild::Leave;
}

// Unlocked while the runtime builds: other threads must be able to launch
// meanwhile, and the runtime may wait for one of them.
cl_int CL_API_CALL hooks::clBuildProgram(
    cl_program program, cl_uint numDevices, const cl_device_id *deviceList,
    const char *options,
    void(CL_CALLBACK *notify)(cl_program program, void *userData),
    void *userData) {
  BuildInProgress call(program);
  const auto build = [&] {
    return runtime().clBuildProgram(program, numDevices, deviceList, options,
                                    notify, userData);
  };

  cl_int status = build();
  AfterBuild next = lookAtLogs(program, numDevices, deviceList);
  if (next == AfterBuild::BuildAgain) {
    // The compiler could not keep a variant in registers. So the program is
    // built again, and this time the compiler does not see that it is tuned.
    status = attemptWithoutAutotune(build);
    next = status == CL_SUCCESS ? AfterBuild::Collect : AfterBuild::Leave;
  }
  call.finish(next == AfterBuild::Collect);
  if (status != CL_SUCCESS)
    reportClError(CallSite::BuildProgram, status);
  return status;
}
