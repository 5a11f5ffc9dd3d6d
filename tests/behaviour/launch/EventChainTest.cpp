// Tests of how the commands of an autotuning launch are ordered.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// A kernel of one buffer with one variant.
struct OneBuffer : TuningApplication {
  cl_kernel kernel;
  OneBuffer() {
    program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
    kernel = create("k");
    set(kernel, 0, createBuffer({1, 2, 3, 4}));
    runtime.forgetTranscript();
  }
};
} // namespace

TEST(EventChain, OrdersSaveVariantRestoreAndKernel) {
  OneBuffer app;
  EXPECT_EQ(app.launch(app.kernel, {16}, {2}), CL_SUCCESS);
  EXPECT_THAT(
      app.chain(),
      ElementsAre(
          "clEnqueueReadBuffer(queue 1, buffer 1, non-blocking, 0, 4, &, [], "
          "event 1)",
          "clEnqueueNDRangeKernel(queue 1, kernel k_coarsed_g0S4, 1, null, "
          "[4], [2], [event 1], event 2)",
          "clSetEventCallback(event 2, 0, &, &)",
          "clEnqueueWriteBuffer(queue 1, buffer 1, non-blocking, 0, 4, &, "
          "[event 2], event 3)",
          "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [16], [2], "
          "[event 3], event 4)",
          "clSetEventCallback(event 4, 0, &, &)", "clReleaseEvent(event 4)",
          "clReleaseEvent(event 1)", "clReleaseEvent(event 2)",
          "clReleaseEvent(event 3)", "clFlush(queue 1)"));
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(EventChain, KeepsItsEventsUntilTheKernelsRunIsOver) {
  OneBuffer app;
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  const auto kept = ElementsAre("event 1", "event 2", "event 3");
  EXPECT_THAT(app.runtime.alive("event"), kept);
  for (int command = 0; command != 3; ++command)
    EXPECT_TRUE(app.runtime.runFirst());
  EXPECT_THAT(app.runtime.alive("event"), kept);
  EXPECT_TRUE(app.runtime.runFirst());
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(EventChain, KeepsItsEventsThroughACancelledWait) {
  OneBuffer app;
  app.runtime.late();
  cl_event start = app.runtime.addEvent();
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, nullptr, {start}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("event"),
              ElementsAre("event 1", "event 2", "event 3", "event 4"));
  app.runtime.endEvent(start, CL_OUT_OF_RESOURCES);
  EXPECT_THAT(app.runtime.alive("event"),
              ElementsAre("event 1", "event 2", "event 3", "event 4"));
  app.runtime.runAll();
  EXPECT_THAT(app.runtime.alive("event"), ElementsAre("event 1"));
}

TEST(EventChain, EndsWithTheVariantsRunIfTheKernelCouldNotBeLaunched) {
  OneBuffer app;
  app.runtime.late();
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 2);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.launch(app.kernel, {16}), CL_OUT_OF_RESOURCES);
  }
  EXPECT_TRUE(app.runtime.runFirst()); // the save
  EXPECT_THAT(app.runtime.alive("event"),
              ElementsAre("event 1", "event 2", "event 3"));
  EXPECT_TRUE(app.runtime.runFirst());
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  app.runtime.runAll();
}

TEST(EventChain, EndsWithTheLaunchIfNoRunCanBeWatched) {
  OneBuffer app;
  app.runtime.late();
  app.runtime.answer("clSetEventCallback", CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.waiting(), testing::SizeIs(4));
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  app.runtime.runAll();
}

TEST(EventChain, BeginsWithTheApplicationsWaitList) {
  OneBuffer app;
  cl_event first = app.runtime.addEvent();
  cl_event second = app.runtime.addEvent();
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, nullptr, {first, second}),
            CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.waiting(),
      ElementsAre(
          "clEnqueueReadBuffer(queue 1, buffer 1, non-blocking, 0, 4, &, "
          "[event 1, event 2], event 3)",
          "clEnqueueNDRangeKernel(queue 1, kernel k_coarsed_g0S4, 1, null, "
          "[4], null, [event 3], event 4)",
          "clEnqueueWriteBuffer(queue 1, buffer 1, non-blocking, 0, 4, &, "
          "[event 4], event 5)",
          "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [16], null, "
          "[event 5], event 6)"));
  app.runtime.endEvent(first);
  app.runtime.endEvent(second);
  EXPECT_THAT(app.runtime.alive("event"), ElementsAre("event 1", "event 2"));
}

TEST(EventChain, GivesTheApplicationTheEventOfItsOwnKernel) {
  OneBuffer app;
  cl_event event = nullptr;
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, &event), CL_SUCCESS);
  EXPECT_THAT(app.launches().back(), testing::HasSubstr("kernel k, "));
  EXPECT_THAT(app.launches().back(), testing::HasSubstr("event 4"));
  EXPECT_THAT(app.runtime.alive("event"), ElementsAre("event 4"));
  EXPECT_EQ(app.cl.clReleaseEvent(event), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(EventChain, HoldsWithoutWaitListAndEventWhateverRunsFirst) {
  TuningApplication app;
  std::string order;
  const auto noted = [&order](char letter) {
    return [&order, letter](const Launch &) { order += letter; };
  };
  app.program.kernel("k", 0, noted('k'));
  app.program.kernel("k_coarsed_g0S1", 0, noted('v'));
  app.program.kernel("k_coarsed_g0S2", 0, noted('v'));
  cl_kernel kernel = app.create("k");
  app.runtime.late();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  // The youngest first, as far as wait lists allow.
  while (app.runtime.runLast()) {
  }
  EXPECT_EQ(order, "vvk");
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(EventChain, WaitsForNothing) {
  OneBuffer app;
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.waiting(), testing::SizeIs(4));
  EXPECT_THAT(app.runtime.transcript({"clFinish"}), IsEmpty());
  app.runtime.runAll();
}

TEST(EventChain, GivesEachVersionTheOffsetAndTheVariantItsOwnRange) {
  OneBuffer app;
  const std::size_t offset = 8;
  const std::size_t global = 16;
  EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), app.kernel, 1,
                                          &offset, &global, nullptr, 0, nullptr,
                                          nullptr),
            CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(testing::HasSubstr("1, [8], [4], null"),
                          testing::HasSubstr("1, [8], [16], null")));
}

TEST(EventChain, OfAKernelWithoutVariantsIsTheKernelAlone) {
  TuningApplication app;
  app.program.kernel("k", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, app.createBuffer({1}));
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.chain(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, "
                          "[16], null, [], event 1)",
                          "clSetEventCallback(event 1, 0, &, &)",
                          "clReleaseEvent(event 1)", "clFlush(queue 1)"));
  EXPECT_EQ(app.log(), std::string(app.header) + "k,16,,,0,,,baseline,1.000\n");
}

TEST(EventChain, OfAKernelWithoutVariantsLeavesTheApplicationItsEvent) {
  TuningApplication app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  cl_event event = nullptr;
  EXPECT_EQ(app.launch(kernel, {16}, {}, &event), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("event"), ElementsAre("event 1"));
  EXPECT_EQ(app.cl.clReleaseEvent(event), CL_SUCCESS);
}

TEST(EventChain, IsNotMadeForAKernelWithoutARecord) {
  TuningApplication app;
  const ProgramScript unknown =
      app.runtime.addProgram().alreadyBuilt().kernel("k");
  cl_kernel kernel = app.cl.clCreateKernel(unknown, "k", nullptr);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.chain(), ElementsAre(plainLaunch("k", "[16]")));
  EXPECT_EQ(app.log(), app.header);
}
