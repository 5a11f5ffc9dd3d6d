// Builds, as the application asked for them.

#include "layer/Builds.h"

#include "layer/AgentsBuild.h"
#include "layer/HiddenKernels.h"
#include "layer/LateBuild.h"
#include "layer/Notification.h"

#include <functional>
#include <memory>
#include <optional>

using namespace corvane::layer;

// The application's build without a notification, or what is left to do of one
// that the layer has begun: the agent looks at the program.
static cl_int buildByAgent(cl_program program, cl_uint numDevices,
                           const cl_device_id *devices, const char *options,
                           void *userData, std::optional<cl_int> attempted,
                           Notification *notification) {
  AgentsBuild build(program);
  build.attempted = attempted;
  build.notification = notification;
  const cl_int status = agent().clBuildProgram(program, numDevices, devices,
                                               options, nullptr, userData);
  noteHiddenKernels(program);
  return status;
}

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
    finishLater = [=,
                   late = LateBuild(numDevices, devices, options)]() mutable {
      lookLate(program, [&] {
        buildByAgent(program, late.deviceCount(), late.deviceList(),
                     late.optionText(), nullptr, CL_SUCCESS, nullptr);
      });
      beingBuilt.reset();
      notification->deliver(program);
    };
  if (!notification->hasReturned(hasBegun, std::move(finishLater)))
    return attempted;

  const cl_int status = buildByAgent(program, numDevices, devices, options,
                                     nullptr, attempted, notification.get());
  beingBuilt.reset();
  notification->deliver(program);
  return status;
}

static cl_int CL_API_CALL build(cl_program program, cl_uint numDevices,
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
static cl_int CL_API_CALL getBuildInfo(cl_program program, cl_device_id device,
                                       cl_program_build_info name, size_t room,
                                       void *value, size_t *length) {
  const bool isBuilt = programs().read(program).builds == 0;
  const cl_int status = runtime().clGetProgramBuildInfo(program, device, name,
                                                        room, value, length);
  if (status == CL_SUCCESS && name == CL_PROGRAM_BUILD_STATUS && value &&
      !isBuilt)
    *static_cast<cl_build_status *>(value) = CL_BUILD_IN_PROGRESS;
  return status;
}

void corvane::layer::serveBuilds(cl_icd_dispatch &above) {
  replace(above.clBuildProgram, &build);
  replace(above.clGetProgramBuildInfo, &getBuildInfo);
}
