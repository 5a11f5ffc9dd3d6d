// Links, as the application asked for them.

#include "layer/Links.h"

#include "layer/AgentsBuild.h"
#include "layer/HiddenKernels.h"
#include "layer/LateBuild.h"
#include "layer/Notification.h"

#include <functional>
#include <memory>

using namespace corvane::layer;

// What is left to do of a link that the layer has begun: the agent looks at the
// program, or links once more if there is none.
template <typename Link>
static cl_program linkByAgent(cl_program attempted, cl_int status,
                              Notification *notification, Link link) {
  AgentsBuild build(attempted);
  build.attempted = status;
  build.notification = notification;
  cl_program program = link();
  if (program)
    noteHiddenKernels(program);
  return program;
}

// The agent releases a program when it runs out of memory, for it takes the
// application to be without it. Here the application has it already.
static void lookAtLinked(cl_context context, cl_program program,
                         const LateBuild &late) {
  if (runtime().clRetainProgram(program) != CL_SUCCESS)
    return;
  linkByAgent(program, CL_SUCCESS, nullptr, [&] {
    return agent().clLinkProgram(context, late.deviceCount(), late.deviceList(),
                                 late.optionText(), 0, nullptr, nullptr,
                                 nullptr, nullptr);
  });
  (void)runtime().clReleaseProgram(program);
}

static cl_program linkNotified(cl_context context, cl_uint numDevices,
                               const cl_device_id *devices, const char *options,
                               cl_uint numInputs, const cl_program *inputs,
                               Notify notify, void *userData,
                               cl_int *errcodeRet) {
  const auto notification = std::make_shared<Notification>(notify, userData);
  cl_int status = CL_SUCCESS;
  cl_program attempted = runtime().clLinkProgram(
      context, numDevices, devices, options, numInputs, inputs,
      &Notification::heard, Notification::arm(notification), &status);
  if (errcodeRet)
    *errcodeRet = status;

  std::shared_ptr<BeingBuilt> beingBuilt;
  std::function<void()> finishLater;
  if (attempted) {
    enterNewProgram(attempted);
    beingBuilt = std::make_shared<BeingBuilt>(attempted);
    finishLater = [=,
                   late = LateBuild(numDevices, devices, options)]() mutable {
      lookLate(attempted, [&] { lookAtLinked(context, attempted, late); });
      beingBuilt.reset();
      notification->deliver(attempted);
    };
  }
  if (!notification->hasReturned(attempted, std::move(finishLater)))
    return attempted;

  cl_program program = linkByAgent(attempted, status, notification.get(), [&] {
    return agent().clLinkProgram(context, numDevices, devices, options,
                                 numInputs, inputs, nullptr, nullptr,
                                 errcodeRet);
  });
  beingBuilt.reset();
  notification->deliver(program);
  return program;
}

static cl_program CL_API_CALL link(cl_context context, cl_uint numDevices,
                                   const cl_device_id *devices,
                                   const char *options, cl_uint numInputs,
                                   const cl_program *inputs, Notify notify,
                                   void *userData, cl_int *errcodeRet) {
  if (notify)
    return linkNotified(context, numDevices, devices, options, numInputs,
                        inputs, notify, userData, errcodeRet);
  cl_program program =
      agent().clLinkProgram(context, numDevices, devices, options, numInputs,
                            inputs, nullptr, userData, errcodeRet);
  if (program)
    noteHiddenKernels(program);
  return program;
}

void corvane::layer::serveLinks(cl_icd_dispatch &above) {
  replace(above.clLinkProgram, &link);
}
