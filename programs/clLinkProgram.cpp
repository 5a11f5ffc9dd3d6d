// The hook of a link: finds the variants in the linked program.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/Owned.h"
#include "agent/RuntimeTable.h"
#include "programs/BuildInProgress.h"
#include "programs/BuiltDevices.h"
#include "programs/Hooks.h"
#include "programs/VariantDiscovery.h"

using namespace corvane;

// The text is part of the interface, byte for byte.
static void warnAboutNotification() {
  writeError("CV: Warning: user function is used when clLinkProgram is called "
             "which prevents Corvane from collecting coarse kernels.\n");
}

// The devices are not used: only a failure of the question matters, for its
// report.
static void checkDevices(cl_program program, const cl_device_id *deviceList) {
  if (deviceList)
    return;
  AgentGuard guard;
  DeviceList devices;
  if (const cl_int status = programDevices(program, devices))
    reportClError(CallSite::LinkDevices, status);
}

// Variants are collected only while the variable is defined, or parked.
static bool autotunes() {
  AgentGuard guard;
  const EnvironmentLook look;
  return resultsDir() != nullptr;
}

// Releases the program if an exception passes: the application has not got it
// yet. A flush may have taken the state away during the link.
static cl_program withKernels(cl_program linked) {
  Owned<cl_program> program(linked);
  AgentGuard guard;
  if (AgentState *state = agentState())
    collectKernels(*state, linked);
  return program.claim();
}

// Unlocked while the runtime links: other threads must be able to launch
// meanwhile, and the runtime may wait for one of them.
cl_program CL_API_CALL hooks::clLinkProgram(
    cl_context context, cl_uint numDevices, const cl_device_id *deviceList,
    const char *options, cl_uint numInputPrograms,
    const cl_program *inputPrograms,
    void(CL_CALLBACK *notify)(cl_program program, void *userData),
    void *userData, cl_int *errcodeRet) {
  const auto link = [&](auto notification, cl_int *status) {
    return runtime().clLinkProgram(context, numDevices, deviceList, options,
                                   numInputPrograms, inputPrograms,
                                   notification, userData, status);
  };

  if (!agentState())
    return link(notify, errcodeRet);

  cl_int localStatus = CL_SUCCESS;
  cl_int *status = errcodeRet ? errcodeRet : &localStatus;
  // Without the notification the link is over when the call returns.
  cl_program program = link(decltype(notify){nullptr}, status);
  if (!autotunes())
    return program;

  checkDevices(program, deviceList);
  if (program)
    return withKernels(program);

  program = attemptWithoutAutotune([&] { return link(notify, status); });
  if (*status != CL_SUCCESS)
    return program;
  if (notify) {
    warnAboutNotification();
    return program;
  }
  return withKernels(program);
}
