// The call that links programs.

#include "layer/Builds.h"
#include "layer/CallContext.h"
#include "layer/Companion.h"
#include "layer/HiddenKernels.h"
#include "layer/LowerHooks.h"
#include "layer/Notification.h"
#include "layer/UpperHooks.h"

#include <functional>
#include <memory>

using namespace corvane::layer;

// What is left to do of a link that the layer has begun: the agent looks at the
// program, or links once more if there is none.
template <typename Link>
static cl_program linkByAgent(cl_program attempted, cl_int status,
                              Notification *notification, Link link) {
  CallContext call;
  call.builtProgram = attempted;
  call.attempted = status;
  call.notification = notification;
  cl_program program = link();
  if (program)
    rememberHiddenKernels(program);
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
    forgoCompanion(attempted);
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

cl_program CL_API_CALL upper::clLinkProgram(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *options, cl_uint numInputs, const cl_program *inputs,
    Notify notify, void *userData, cl_int *errcodeRet) {
  if (notify)
    return linkNotified(context, numDevices, devices, options, numInputs,
                        inputs, notify, userData, errcodeRet);
  const CallContext call;
  cl_program program =
      agent().clLinkProgram(context, numDevices, devices, options, numInputs,
                            inputs, nullptr, userData, errcodeRet);
  if (program)
    rememberHiddenKernels(program);
  return program;
}

// In place of the agent's first link it gets the one that the layer has made.
// The agent may look at the program as soon as it has it: should it still know
// one that is gone and had the same handle, it must forget that one before.
cl_program CL_API_CALL lower::clLinkProgram(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *options, cl_uint numInputs, const cl_program *inputs,
    Notify notify, void *userData, cl_int *errcodeRet) {
  CallContext *call = CallContext::current();
  if (const auto attempted = call ? call->takeAttempt() : std::nullopt) {
    if (errcodeRet)
      *errcodeRet = *attempted;
    return call->builtProgram;
  }
  cl_program program =
      runtime().clLinkProgram(context, numDevices, devices, options, numInputs,
                              inputs, notify, userData, errcodeRet);
  if (!program)
    return program;
  enterNewProgram(program);
  forgoCompanion(program);
  if (call && call->notification)
    call->notification->hear(program);
  return program;
}
