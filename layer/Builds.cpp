// Builds and links, as the application asked for them.

#include "layer/Builds.h"

#include "layer/HiddenKernels.h"
#include "layer/Notification.h"
#include "layer/Programs.h"

#include <chrono>
#include <thread>

using namespace corvane::layer;

// The agent waits for the end of what it has started, so that it can look at
// the program. The runtime ends it before it returns if nobody is to be
// notified; else we wait for its call.
template <typename Attempt, typename HasBegun>
static auto attempt(Attempt attemptWith, HasBegun hasBegun, Notify notify,
                    void *userData) {
  Notification *listening = Notification::listening();
  if (!listening)
    return attemptWith(notify, userData);
  listening->startOver();
  const auto result =
      attemptWith(static_cast<Notify>(&Notification::heard), listening);
  if (hasBegun(result))
    listening->wait();
  return result;
}

// A program that has kernels cannot be built. The runtime still has one for a
// moment after its launch is over, and longer when the agent looks at the
// launch first: then alone the build would have worked, and is tried again.
// Where the application has kernels, it hears of it somewhat later.
template <typename Build> static cl_int buildWithoutKernels(Build tryToBuild) {
  cl_int status = tryToBuild();
  for (int tries = 0; status == CL_INVALID_OPERATION && tries != 100; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    status = tryToBuild();
  }
  return status;
}

// A second build would be added to the first one's record. The agent holds its
// lock, so the build that comes is the next that it learns of.
static cl_int CL_API_CALL buildBelow(cl_program program, cl_uint numDevices,
                                     const cl_device_id *devices,
                                     const char *options, Notify notify,
                                     void *userData) {
  if (programs().has(program))
    forgetBuilds(program);
  return attempt(
      [&](Notify call, void *with) {
        return buildWithoutKernels([&] {
          return runtime().clBuildProgram(program, numDevices, devices, options,
                                          call, with);
        });
      },
      [](cl_int status) { return status == CL_SUCCESS; }, notify, userData);
}

static cl_int CL_API_CALL build(cl_program program, cl_uint numDevices,
                                const cl_device_id *devices,
                                const char *options, Notify notify,
                                void *userData) {
  enterUnseenProgram(program);
  Notification notification(notify, userData);
  const cl_int status =
      agent().clBuildProgram(program, numDevices, devices, options, nullptr,
                             notify ? nullptr : userData);
  noteHiddenKernels(program);
  notification.deliver(program);
  return status;
}

// The agent may look at the program as soon as it has it. Should it still know
// one that is gone and had the same handle, it must forget that one before.
static cl_program CL_API_CALL linkBelow(cl_context context, cl_uint numDevices,
                                        const cl_device_id *devices,
                                        const char *options, cl_uint numInputs,
                                        const cl_program *inputs, Notify notify,
                                        void *userData, cl_int *errcodeRet) {
  cl_program program = attempt(
      [&](Notify call, void *with) {
        return runtime().clLinkProgram(context, numDevices, devices, options,
                                       numInputs, inputs, call, with,
                                       errcodeRet);
      },
      [](cl_program linked) { return linked != nullptr; }, notify, userData);
  if (program)
    enterNewProgram(program);
  return program;
}

static cl_program CL_API_CALL link(cl_context context, cl_uint numDevices,
                                   const cl_device_id *devices,
                                   const char *options, cl_uint numInputs,
                                   const cl_program *inputs, Notify notify,
                                   void *userData, cl_int *errcodeRet) {
  Notification notification(notify, userData);
  cl_program program = agent().clLinkProgram(
      context, numDevices, devices, options, numInputs, inputs, nullptr,
      notify ? nullptr : userData, errcodeRet);
  if (program)
    noteHiddenKernels(program);
  notification.deliver(program);
  return program;
}

void corvane::layer::watchBuilds(cl_icd_dispatch &below) {
  replace(below.clBuildProgram, &buildBelow);
  replace(below.clLinkProgram, &linkBelow);
}

void corvane::layer::serveBuilds(cl_icd_dispatch &above) {
  replace(above.clBuildProgram, &build);
  replace(above.clLinkProgram, &link);
}
