// Tests of autotuning launches in which a call fails.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
/// A kernel of one buffer, with a variant or without.
struct OneBuffer : TuningApplication {
  cl_kernel kernel;
  cl_mem buffer;
  explicit OneBuffer(bool hasVariant = true) {
    program.kernel("k", 1, [](const Launch &l) { ++l.buffer(0)[0]; });
    if (hasVariant)
      program.kernel("k_coarsed_g0S4", 1,
                     [](const Launch &l) { l.buffer(0)[0] = 99; });
    kernel = create("k");
    buffer = createBuffer({1});
    set(kernel, 0, buffer);
    runtime.forgetTranscript();
  }
  std::string logOf(const std::string &rows) const { return header + rows; }
};
} // namespace

TEST(TuningFailures, OfAVariantLeaveTheChainAsItWas) {
  OneBuffer app;
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "");
  EXPECT_EQ(app.launches().back(),
            "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [16], null, "
            "[event 2], event 3)");
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,baseline,1.000\n"));
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(TuningFailures, OfTheKernelAreReportedAndReturnedAfterTheFlush) {
  OneBuffer app;
  app.runtime.answer("clEnqueueNDRangeKernel", CL_INVALID_KERNEL_ARGS, 2);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_INVALID_KERNEL_ARGS);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 1145: CL Error: CL_INVALID_KERNEL_ARGS\n");
  EXPECT_EQ(app.chain().back(), "clFlush(queue 1)");
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"));
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(1));
}

TEST(TuningFailures, OfTheKernelLeaveTheApplicationsEventAlone) {
  for (const bool hasVariant : {true, false}) {
    OneBuffer app(hasVariant);
    app.runtime.answer("clEnqueueNDRangeKernel", CL_INVALID_KERNEL_ARGS,
                       hasVariant ? 2 : 1);
    auto *const untouched = reinterpret_cast<cl_event>(&app);
    cl_event event = untouched;
    ErrorCapture errors;
    EXPECT_EQ(app.launch(app.kernel, {16}, {}, &event), CL_INVALID_KERNEL_ARGS);
    EXPECT_EQ(event, untouched);
    EXPECT_THAT(app.runtime.transcript({"clSetEventCallback"}),
                SizeIs(hasVariant ? 1 : 0));
  }
}

TEST(TuningFailures, OfAKernelAloneAreReportedAndReturnedAfterTheFlush) {
  OneBuffer app(false);
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(errors.text(), "QrlAgent:: 1145: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_EQ(app.chain().back(), "clFlush(queue 1)");
  EXPECT_EQ(app.log(), app.header);
}

// A runtime for an older OpenCL lacks the entry that watches a kernel.
TEST(TuningFailures, OfARuntimeThatCannotWatchAKernelAreReturned) {
  TuningApplication app(
      {}, [](DispatchTable &table) { table.clSetEventCallback = nullptr; });
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_INVALID_OPERATION);
  EXPECT_THAT(app.launches(), SizeIs(1));
  EXPECT_EQ(app.log(), app.header);
}

TEST(TuningFailures, OfWatchingAKernelAloneBecomeTheLaunchesStatus) {
  OneBuffer app(false);
  app.runtime.answer("clSetEventCallback", CL_OUT_OF_HOST_MEMORY);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 1123: CL Error: CL_OUT_OF_HOST_MEMORY\n"
            "QrlAgent:: 1145: CL Error: CL_OUT_OF_HOST_MEMORY\n");
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  EXPECT_EQ(app.log(), app.header);
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
}

TEST(TuningFailures, OfWatchingAreNotLookedAtWithVariants) {
  OneBuffer app;
  app.runtime.answer("clSetEventCallback", CL_OUT_OF_HOST_MEMORY);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "");
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  EXPECT_EQ(app.log(), app.header);
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
}

TEST(TuningFailures, OfTheFlushAreNotLookedAt) {
  OneBuffer app;
  app.runtime.answer("clFlush", CL_INVALID_COMMAND_QUEUE);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "");
}

TEST(TuningFailures, OfReadingTheStartAreReportedAndRecordedAsZero) {
  OneBuffer app(false);
  app.runtime.answer("clGetEventProfilingInfo", CL_INVALID_EVENT, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 741: CL Error: CL_INVALID_EVENT\n");
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,baseline,0.000\n"));
  EXPECT_THAT(app.runtime.transcript({"clGetEventProfilingInfo"}), SizeIs(1));
}

TEST(TuningFailures, OfReadingTheEndAreReportedAndRecordedAsZero) {
  OneBuffer app(false);
  app.runtime.answer("clGetEventProfilingInfo", CL_INVALID_EVENT, 2);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 745: CL Error: CL_INVALID_EVENT\n");
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,baseline,0.000\n"));
}

TEST(TuningFailures, OfARunAreMeasuredAndRecordedAsAnyRun) {
  OneBuffer app;
  app.runtime.takes("k_coarsed_g0S4", {7});
  app.runtime.takes("k", {12345});
  app.runtime.endsWith("k_coarsed_g0S4", CL_OUT_OF_RESOURCES);
  app.runtime.endsWith("k", CL_INVALID_VALUE);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,0.007\n"
                                 "k,16,,,0,,,baseline,12.345\n"));
}

TEST(TuningFailures, OfTheDevicesClockAreRecordedAsTheyAre) {
  OneBuffer app(false);
  app.runtime.counters("k", {{9, 5}});
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(),
            app.logOf("k,16,,,0,,,baseline,18446744073709552.000\n"));
}

TEST(TuningFailures, OfCreatingTheVariantLetTheKernelRunAlone) {
  TuningApplication app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  app.build();
  app.runtime.answer("clCreateKernel", CL_OUT_OF_RESOURCES, 2);
  ErrorCapture errors;
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, app.createBuffer({1}));
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript({"clEnqueueReadBuffer", "clEnqueueNDRangeKernel"}),
      ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, "
                  "[16], null, [], event 1)"));
  EXPECT_EQ(app.log(), std::string(app.header) + "k,16,,,0,,,baseline,1.000\n");
}

TEST(TuningFailures, OfSettingAnArgumentKeepTheVariantFromRunning) {
  OneBuffer app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  cl_mem other = app.createBuffer({5});
  app.set(app.kernel, 0, other);
  app.runtime.forgetTranscript();
  app.runtime.answer("clSetKernelArg", CL_OUT_OF_RESOURCES, 1);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
    EXPECT_EQ(errors.text(), "QrlAgent:: 721: CL Error: CL_OUT_OF_RESOURCES\n");
  }
  // The variant would have spoiled the first buffer, which is not saved.
  EXPECT_THAT(app.launches(), SizeIs(1));
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
  EXPECT_THAT(app.runtime.bytes(other), ElementsAre(6));

  // With the next launch the variant gets its arguments and runs.
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(3));
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
  EXPECT_THAT(app.runtime.bytes(other), ElementsAre(7));
}
