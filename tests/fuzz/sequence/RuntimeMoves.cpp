// The moves of the runtime, of the environment and of the loader.

#include "agent/Environment.h"
#include "tests/fuzz/sequence/Play.h"

using namespace corvane;
using namespace corvane::fuzz;

void corvane::fuzz::completeCommands(Play &play) {
  switch (play.input.below(6)) {
  case 0:
    play.runtime.runFirst();
    break;
  case 1:
    play.runtime.runLast();
    break;
  case 2:
    play.runtime.runAll();
    break;
  case 3:
    play.runtime.fireCallbacks();
    play.callbacksMayBeHeld = play.holdsCallbacks;
    break;
  case 4:
    play.cl().clFinish(play.runtime.queue());
    break;
  default:
    if (const cl_event *event = play.pick(play.userEvents)) {
      play.runtime.endEvent(*event, play.input.flag() ? CL_COMPLETE : -5);
      play.cl().clReleaseEvent(*event);
      Play::drop(play.userEvents, event);
    }
  }
}

void corvane::fuzz::holdCommands(Play &play) {
  switch (play.input.below(5)) {
  case 0:
    play.runtime.late(true);
    break;
  case 1:
    play.runtime.late(false);
    break;
  case 2:
    play.runtime.holdCallbacks(true);
    play.holdsCallbacks = play.callbacksMayBeHeld = true;
    break;
  case 3:
    play.runtime.holdCallbacks(false);
    play.holdsCallbacks = false;
    break;
  default:
    play.userEvents.push_back(play.runtime.addEvent());
  }
}

static constexpr const char *entries[] = {"clBuildProgram",
                                          "clGetProgramInfo",
                                          "clGetProgramBuildInfo",
                                          "clCreateKernelsInProgram",
                                          "clCreateKernel",
                                          "clGetKernelInfo",
                                          "clReleaseKernel",
                                          "clSetKernelArg",
                                          "clGetKernelArgInfo",
                                          "clEnqueueReadBuffer",
                                          "clEnqueueWriteBuffer",
                                          "clEnqueueNDRangeKernel",
                                          "clSetEventCallback",
                                          "clGetEventProfilingInfo",
                                          "clReleaseEvent",
                                          "clCreateBuffer",
                                          "clSetMemObjectDestructorCallback",
                                          "clFlush",
                                          "clReleaseProgram",
                                          "clReleaseContext",
                                          "clCreateCommandQueue",
                                          "clCreateProgramWithSource",
                                          "clLinkProgram"};

void corvane::fuzz::scriptFailure(Play &play) {
  constexpr cl_int codes[] = {CL_OUT_OF_RESOURCES, CL_INVALID_VALUE,
                              CL_OUT_OF_HOST_MEMORY, -9999, 7};
  play.failing = true;
  const cl_int code = codes[play.input.below(std::size(codes))];
  const char *entry = entries[play.input.below(std::size(entries))];
  switch (play.input.below(4)) {
  case 0:
    play.runtime.answer(entry, code);
    break;
  case 1:
    play.runtime.answer(entry, code, 1 + play.input.below(8));
    break;
  case 2:
    play.runtime.answerAny(1 + play.input.below(64), code);
    break;
  default:
    play.runtime.answer(entry, CL_SUCCESS);
  }
}

void corvane::fuzz::scriptDevice(Play &play) {
  const std::string kernel = play.kernelName();
  switch (play.input.below(6)) {
  case 0:
    play.runtime.takes(kernel, {play.input.byte(), play.input.byte() * 1000U});
    break;
  case 1:
    play.runtime.counters(kernel, {{play.input.byte(), play.input.byte()}});
    break;
  case 2:
    play.runtime.endsWith(kernel, -5);
    break;
  case 3:
    play.runtime.recycleHandles();
    break;
  case 4:
    play.failing = true;
    play.runtime.lies().kernelCount =
        static_cast<cl_uint>(play.input.below(5000));
    break;
  default:
    play.failing = true;
    play.runtime.lies().buildLogSize = play.input.below(2000);
    play.runtime.lies().deviceCount =
        static_cast<cl_uint>(play.input.below(100));
  }
}

void corvane::fuzz::changeEnvironment(Play &play) {
  constexpr const char *names[] = {variable::flushOnReleaseContext,
                                   variable::installLocation, variable::dumpLog,
                                   variable::autotune};
  const char *name = names[play.input.below(std::size(names))];
  if (name == variable::autotune) {
    // The results go to another folder from now on, or nowhere.
    play.rowsUnknown = true;
    play.defineDirectory(play.input.flag());
  } else {
    play.define(name, play.input.flag() ? "x" : nullptr);
  }
}

void corvane::fuzz::reload(Play &play) {
  if (play.input.flag()) {
    play.flushed();
    play.agent->unload();
  } else {
    play.loadAgain();
  }
}
