// Tests of the scripted runtime's commands, events and callbacks.

#include "tests/support/FakeRuntime.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class FakeCommands : public testing::Test {
public:
  cl_event read(unsigned char &host, const std::vector<cl_event> &waitList) {
    cl_event event = nullptr;
    EXPECT_EQ(cl.clEnqueueReadBuffer(
                  runtime.queue(), buffer, CL_FALSE, 0, 1, &host,
                  static_cast<cl_uint>(waitList.size()),
                  waitList.empty() ? nullptr : waitList.data(), &event),
              CL_SUCCESS);
    return event;
  }

  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  cl_mem buffer = runtime.addBuffer(1);
};

void CL_CALLBACK count(cl_event, cl_int status, void *data) {
  if (status == CL_COMPLETE)
    ++*static_cast<int *>(data);
}
} // namespace

TEST_F(FakeCommands, RunAtOnceUnlessToldOtherwise) {
  unsigned char host = 0;
  runtime.setBytes(buffer, {7});
  read(host, {});
  EXPECT_EQ(host, 7);
}

TEST_F(FakeCommands, TouchHostMemoryOnlyWhenTheyRun) {
  unsigned char host = 0;
  runtime.late();
  read(host, {});
  runtime.setBytes(buffer, {7});
  EXPECT_EQ(host, 0);

  EXPECT_TRUE(runtime.runFirst());
  EXPECT_EQ(host, 7);
  EXPECT_FALSE(runtime.runFirst());
}

TEST_F(FakeCommands, AreOrderedByTheirWaitListsAlone) {
  unsigned char host = 0;
  runtime.late();
  cl_event first = read(host, {});
  read(host, {first});
  read(host, {});

  runtime.runLast();
  EXPECT_THAT(runtime.waiting(),
              ElementsAre("clEnqueueReadBuffer(queue 1, buffer 1, "
                          "non-blocking, 0, 1, &, [], event 1)",
                          "clEnqueueReadBuffer(queue 1, buffer 1, "
                          "non-blocking, 0, 1, &, [event 1], event 2)"));
  runtime.runLast();
  EXPECT_THAT(runtime.waiting(),
              ElementsAre("clEnqueueReadBuffer(queue 1, buffer 1, "
                          "non-blocking, 0, 1, &, [event 1], event 2)"));
  runtime.runLast();
  EXPECT_THAT(runtime.waiting(), IsEmpty());
}

TEST_F(FakeCommands, WaitForEventsOfTheTest) {
  unsigned char host = 0;
  runtime.setBytes(buffer, {7});
  cl_event gate = runtime.addEvent();
  read(host, {gate});
  EXPECT_EQ(host, 0);
  runtime.endEvent(gate);
  EXPECT_EQ(host, 7);
}

TEST_F(FakeCommands, FireCallbacksOnceAndWhenTheTestSays) {
  unsigned char host = 0;
  int calls = 0;
  runtime.holdCallbacks();
  cl_event event = read(host, {});
  cl.clSetEventCallback(event, CL_COMPLETE, count, &calls);
  cl.clReleaseEvent(event);

  EXPECT_EQ(calls, 0);
  EXPECT_EQ(runtime.fireCallbacks(), 1U);
  EXPECT_EQ(runtime.fireCallbacks(), 0U);
  EXPECT_EQ(calls, 1);
}

TEST_F(FakeCommands, KeepAReleasedEventForItsCallback) {
  unsigned char host = 0;
  const auto ask = [](cl_event event, cl_int, void *data) {
    cl_ulong start = 0;
    auto &self = *static_cast<FakeCommands *>(data);
    EXPECT_EQ(
        self.runtime.ownTable().clGetEventProfilingInfo(
            event, CL_PROFILING_COMMAND_START, sizeof start, &start, nullptr),
        CL_SUCCESS);
  };
  runtime.late();
  cl_event event = read(host, {});
  cl.clSetEventCallback(event, CL_COMPLETE, ask, this);
  cl.clReleaseEvent(event);
  runtime.runAll();
  EXPECT_THAT(runtime.transcript({"clGetEventProfilingInfo"}),
              ElementsAre("clGetEventProfilingInfo(event 1, "
                          "CL_PROFILING_COMMAND_START, 8, &, null)"));
}

TEST_F(FakeCommands, ComputeWithTheArgumentsOfTheirEnqueuing) {
  const cl_program program = runtime.addProgram()
                                 .kernel("k", 2,
                                         [](const Launch &launch) {
                                           launch.buffer(0)[0] =
                                               launch.value<unsigned char>(1);
                                         })
                                 .alreadyBuilt();
  cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
  const std::size_t global = 1;
  const auto launch = [&] {
    return cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                     &global, nullptr, 0, nullptr, nullptr);
  };
  unsigned char value = 3;
  cl.clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
  EXPECT_EQ(launch(), CL_INVALID_KERNEL_ARGS);

  cl.clSetKernelArg(kernel, 1, sizeof value, &value);
  runtime.late();
  EXPECT_EQ(launch(), CL_SUCCESS);
  value = 9;
  cl.clSetKernelArg(kernel, 1, sizeof value, &value);
  runtime.runAll();
  EXPECT_EQ(runtime.bytes(buffer)[0], 3);
}

TEST_F(FakeCommands, TakeAsLongAsTheTestSays) {
  const cl_program program = runtime.addProgram().kernel("k").alreadyBuilt();
  cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
  runtime.takes("k", {30, 50});
  const std::size_t global = 1;
  std::vector<cl_ulong> durations;
  for (int run = 0; run != 3; ++run) {
    cl_event event = nullptr;
    cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr, &global,
                              nullptr, 0, nullptr, &event);
    cl_ulong start = 0;
    cl_ulong end = 0;
    cl.clGetEventProfilingInfo(event, CL_PROFILING_COMMAND_START, sizeof start,
                               &start, nullptr);
    cl.clGetEventProfilingInfo(event, CL_PROFILING_COMMAND_END, sizeof end,
                               &end, nullptr);
    durations.push_back(end - start);
  }
  EXPECT_THAT(durations, ElementsAre(30, 50, 50));
}
