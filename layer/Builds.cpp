// The calls that build a program and tell how far a build is.

#include "layer/Builds.h"

#include "layer/CallContext.h"
#include "layer/Companion.h"
#include "layer/CompanionSettings.h"
#include "layer/HiddenKernels.h"
#include "layer/LowerHooks.h"
#include "layer/Notification.h"
#include "layer/UpperHooks.h"

#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

using namespace corvane::layer;

// The application's build without a notification, or what is left to do of one
// that the layer has begun: the agent looks at the program.
static cl_int buildByAgent(cl_program program, cl_uint numDevices,
                           const cl_device_id *devices, const char *options,
                           void *userData, std::optional<cl_int> attempted,
                           Notification *notification) {
  CallContext call;
  call.builtProgram = program;
  call.attempted = attempted;
  call.notification = notification;
  const cl_int status = agent().clBuildProgram(program, numDevices, devices,
                                               options, nullptr, userData);
  rememberHiddenKernels(program);
  return status;
}

// The runtime notifies on a thread of its own, which must not wait for another
// build: a companion is built on a thread that may.
static std::function<void()> whereItMayWait(std::function<void()> finish) {
  if (!companionsAreWanted())
    return finish;
  return [finish = std::move(finish)] {
    try {
      std::thread(finish).detach();
    } catch (const std::system_error &) {
      finish(); // on the runtime's thread, rather than never
    }
  };
}

// The layer begins the build, and has the agent look at the program when the
// runtime has notified. Nothing waits meanwhile.
static cl_int buildNotified(cl_program program, cl_uint numDevices,
                            const cl_device_id *devices, const char *options,
                            Notify notify, void *userData) {
  const auto notification = std::make_shared<Notification>(notify, userData);
  auto beingBuilt = std::make_shared<BeingBuilt>(program);
  const cl_int attempted = buildWithoutKernels([&] {
    return runtime().clBuildProgram(program, numDevices, devices, options,
                                    &Notification::heard,
                                    Notification::arm(notification));
  });

  const bool hasBegun = attempted == CL_SUCCESS;
  std::function<void()> finishLater;
  if (hasBegun)
    finishLater = whereItMayWait(
        [=, late = LateBuild(numDevices, devices, options)]() mutable {
          lookLate(program, [&] {
            buildByAgent(program, late.deviceCount(), late.deviceList(),
                         late.optionText(), nullptr, CL_SUCCESS, nullptr);
          });
          beingBuilt.reset();
          notification->deliver(program);
        });
  if (!notification->hasReturned(hasBegun, std::move(finishLater)))
    return attempted;

  const cl_int status = buildByAgent(program, numDevices, devices, options,
                                     nullptr, attempted, notification.get());
  beingBuilt.reset();
  notification->deliver(program);
  return status;
}

cl_int CL_API_CALL upper::clBuildProgram(cl_program program, cl_uint numDevices,
                                         const cl_device_id *devices,
                                         const char *options, Notify notify,
                                         void *userData) {
  enterUnseenProgram(program);
  if (notify)
    return buildNotified(program, numDevices, devices, options, notify,
                         userData);
  const BeingBuilt beingBuilt(program);
  return buildByAgent(program, numDevices, devices, options, userData,
                      std::nullopt, nullptr);
}

// To the application a build is over when the agent has seen the program, too:
// kernels that it creates then have their variants.
cl_int CL_API_CALL upper::clGetProgramBuildInfo(cl_program program,
                                                cl_device_id device,
                                                cl_program_build_info name,
                                                size_t capacity, void *value,
                                                size_t *length) {
  const bool isBuilt = programs().read(program).builds == 0;
  const cl_int status = runtime().clGetProgramBuildInfo(
      program, device, name, capacity, value, length);
  if (status == CL_SUCCESS && name == CL_PROGRAM_BUILD_STATUS && value &&
      !isBuilt)
    *static_cast<cl_build_status *>(value) = CL_BUILD_IN_PROGRESS;
  return status;
}

void corvane::layer::forgetBuildsBeforeCollection(cl_program program) {
  const CallContext *call = CallContext::current();
  if (call && call->builtProgram == program && programs().has(program))
    forgetBuilds(program);
}

// Whether the application builds the program in this call.
static bool isBuiltByApplication(const CallContext *call, cl_program program) {
  return call && call->builtProgram == program;
}

// In place of the agent's first attempt to build it gets the one that the layer
// has made. It may pass over what was built; earlier builds must not count
// then either.
cl_int CL_API_CALL lower::clBuildProgram(cl_program program, cl_uint numDevices,
                                         const cl_device_id *devices,
                                         const char *options, Notify notify,
                                         void *userData) {
  CallContext *call = CallContext::current();
  if (const auto attempted = call ? call->takeAttempt() : std::nullopt) {
    forgetBuildsBeforeCollection(program);
    if (*attempted == CL_SUCCESS && isBuiltByApplication(call, program))
      bringCompanion(program, options);
    return *attempted;
  }
  const cl_int status = buildWithoutKernels([&] {
    return runtime().clBuildProgram(program, numDevices, devices, options,
                                    notify, userData);
  });
  forgetBuildsBeforeCollection(program);
  if (status == CL_SUCCESS && isBuiltByApplication(call, program))
    bringCompanion(program, options);
  if (status == CL_SUCCESS && call && call->notification)
    call->notification->hear(program);
  return status;
}
