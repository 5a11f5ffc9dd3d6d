// A build, and the discovery of the variants that it made.

#include "agent/AgentLock.h"
#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/Environment.h"
#include "agent/Flags.h"
#include "agent/RuntimeTable.h"
#include "programs/BuildLog.h"
#include "programs/Devices.h"
#include "programs/Hooks.h"
#include "programs/VariantDiscovery.h"

using namespace corvane;

// Without a program there is nothing to be clean.
static bool screenBuiltDevices(cl_program program, cl_uint numDevices,
                               const cl_device_id *deviceList) {
  if (deviceList)
    return program && screenBuild(program, {deviceList, numDevices});

  DeviceList devices;
  if (const cl_int status = programDevices(program, devices))
    reportClError(CallSite::BuildDevices, status);
  return program && screenBuild(program, devices);
}

cl_int CL_API_CALL hooks::clBuildProgram(
    cl_program program, cl_uint numDevices, const cl_device_id *deviceList,
    const char *options,
    void(CL_CALLBACK *notify)(cl_program program, void *userData),
    void *userData) {
  AgentGuard guard;
  const auto build = [&] {
    return runtime().clBuildProgram(program, numDevices, deviceList, options,
                                    notify, userData);
  };

  cl_int status = build();
  if (AgentState *state = agentState()) {
    const bool clean = screenBuiltDevices(program, numDevices, deviceList);
    if (clean) {
      collectKernels(*state, program);
    } else if (autotuneOutput()) {
      // Variants that spill registers are not worth timing: the compiler gets a
      // second chance, as if nobody were autotuning.
      hideAutotune();
      status = build();
      restoreAutotune();
      if (status == CL_SUCCESS)
        collectKernels(*state, program);
    }
  }
  if (status != CL_SUCCESS)
    reportClError(CallSite::BuildProgram, status);
  return status;
}
