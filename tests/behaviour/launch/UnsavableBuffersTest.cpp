// Tests of launches whose buffers cannot all be saved: they must not be spoilt.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
/// A kernel of two buffers whose variant spoils both.
struct TwoBuffers : TuningApplication {
  cl_kernel kernel;
  cl_mem first = nullptr;
  cl_mem second = nullptr;

  TwoBuffers() {
    const auto add = [](const Launch &l) { ++l.buffer(0)[0]; };
    const auto spoil = [](const Launch &l) {
      l.buffer(0)[0] = l.buffer(1)[0] = 99;
    };
    program.kernel("k", 2, add).kernel("k_coarsed_g0S4", 2, spoil);
    kernel = create("k");
  }
  void use(cl_mem one, cl_mem other) {
    first = one;
    second = other;
    set(kernel, 0, first);
    set(kernel, 1, second);
    runtime.forgetTranscript();
  }
  void useUsual() {
    cl_mem one = createBuffer({1});
    use(one, createBuffer({2}));
  }

  void expectOnlyTheKernelRan() {
    EXPECT_THAT(runtime.bytes(first), ElementsAre(2));
    EXPECT_THAT(runtime.bytes(second), ElementsAre(2));
    EXPECT_EQ(log(), std::string(header) + "k,16,,,0,,,baseline,1.000\n");
    EXPECT_THAT(runtime.transcript({"clEnqueueWriteBuffer"}), IsEmpty());
    EXPECT_THAT(runtime.alive("event"), IsEmpty());
  }
  void launchAndExpectOnlyTheKernel() {
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    expectOnlyTheKernelRan();
  }
};
} // namespace

TEST(UnsavableBuffers, AreNeverAskedAboutWhenTheyCanBeSaved) {
  TwoBuffers app;
  app.useUsual();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
  EXPECT_THAT(app.runtime.bytes(app.first), ElementsAre(2));
  EXPECT_THAT(app.runtime.bytes(app.second), ElementsAre(2));
}

TEST(UnsavableBuffers, KeepVariantsFromRunningWhenTheFirstSaveFails) {
  TwoBuffers app;
  app.useUsual();
  app.runtime.answer("clEnqueueReadBuffer", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  app.launchAndExpectOnlyTheKernel();
  EXPECT_THAT(app.launches(), SizeIs(1));
  EXPECT_EQ(errors.text(), "");
}

TEST(UnsavableBuffers, LeaveTheChainWholeWhenALaterSaveFails) {
  TwoBuffers app;
  app.useUsual();
  app.runtime.answer("clEnqueueReadBuffer", CL_OUT_OF_RESOURCES, 2);
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.waiting(),
      ElementsAre("clEnqueueReadBuffer(queue 1, buffer 1, non-blocking, 0, 1, "
                  "&, [], event 1)",
                  "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [16], "
                  "null, [event 1], event 2)"));
  app.runtime.runAll();
  app.expectOnlyTheKernelRan();
}

TEST(UnsavableBuffers, AreTriedAgainForTheNextVariantAndTheNextLaunch) {
  TuningApplication app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S2", 1);
  app.program.kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, app.createBuffer({1}));
  app.runtime.answer("clEnqueueReadBuffer", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(5));
}

namespace {
class HostAccess : public testing::TestWithParam<cl_mem_flags> {};
} // namespace

TEST_P(HostAccess, KeepsVariantsFromRunningWhereTheHostMayNotTransfer) {
  TwoBuffers app;
  app.use(app.createBuffer({1}), app.createBuffer({2}, GetParam()));
  app.launchAndExpectOnlyTheKernel();
}

INSTANTIATE_TEST_SUITE_P(Flags, HostAccess,
                         testing::Values(CL_MEM_HOST_NO_ACCESS,
                                         CL_MEM_HOST_WRITE_ONLY,
                                         CL_MEM_HOST_READ_ONLY));

TEST(UnsavableBuffers, KeepVariantsFromRunningWithoutMemoryOnTheHost) {
  TwoBuffers app;
  cl_mem tooLarge = app.cl.clCreateBuffer(
      app.runtime.context(), CL_MEM_READ_WRITE, SIZE_MAX / 2, nullptr, nullptr);
  app.use(app.createBuffer({1}), tooLarge);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(1));
  EXPECT_THAT(app.runtime.transcript({"clEnqueueReadBuffer"}), IsEmpty());
  EXPECT_THAT(app.runtime.bytes(app.first), ElementsAre(2));
}

TEST(UnsavableBuffers, KeepVariantsFromRunningWhenAHandleHasTwoRecords) {
  // The runtime has not reported the end of the smaller buffer yet.
  TwoBuffers app;
  app.runtime.recycleHandles();
  app.runtime.holdCallbacks();
  cl_mem gone = app.createBuffer({1});
  EXPECT_EQ(app.cl.clReleaseMemObject(gone), CL_SUCCESS);
  cl_mem again = app.createBuffer({1, 2, 3});
  ASSERT_EQ(again, gone);
  app.use(again, app.createBuffer({2}));
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(1));
  EXPECT_THAT(app.runtime.bytes(again), ElementsAre(2, 2, 3));

  app.runtime.holdCallbacks(false);
  app.runtime.fireCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(3));
  EXPECT_THAT(app.runtime.bytes(again), ElementsAre(3, 2, 3));
}

TEST(UnsavableBuffers, AreNotThoseOfAHandleWhoseFirstBufferWasNotWatched) {
  TwoBuffers app;
  app.runtime.recycleHandles();
  app.runtime.answer("clSetMemObjectDestructorCallback", CL_OUT_OF_RESOURCES);
  ErrorCapture errors;
  cl_mem gone = app.createBuffer({1});
  EXPECT_EQ(app.cl.clReleaseMemObject(gone), CL_SUCCESS);
  cl_mem again = app.createBuffer({1, 2, 3});
  ASSERT_EQ(again, gone);
  app.use(again, app.createBuffer({2}));
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
  EXPECT_THAT(app.runtime.bytes(again), ElementsAre(2, 2, 3));
}

TEST(UnsavableBuffers, AreRestoredInASecondTryWhenTheFirstFails) {
  TwoBuffers app;
  app.useUsual();
  app.runtime.answer("clEnqueueWriteBuffer", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clEnqueueWriteBuffer"}), SizeIs(3));
  EXPECT_THAT(app.runtime.bytes(app.first), ElementsAre(2));
  EXPECT_THAT(app.runtime.bytes(app.second), ElementsAre(2));
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(UnsavableBuffers, AreNotSavedAgainBeforeTheyAreRestored) {
  TuningApplication app;
  const auto spoil = [](const Launch &l) { l.buffer(0)[0] = 99; };
  app.program.kernel("k", 1, [](const Launch &l) { ++l.buffer(0)[0]; })
      .kernel("k_coarsed_g0S2", 1, spoil)
      .kernel("k_coarsed_g0S4", 1, spoil);
  cl_kernel kernel = app.create("k");
  cl_mem buffer = app.createBuffer({1});
  app.set(kernel, 0, buffer);
  for (const std::size_t nth : {1, 2})
    app.runtime.answer("clEnqueueWriteBuffer", CL_OUT_OF_RESOURCES, nth);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
  EXPECT_THAT(app.runtime.bytes(buffer), ElementsAre(2));
}

TEST(UnsavableBuffers, LeaveTheChainWholeWhenNoRestoreWorks) {
  TwoBuffers app;
  app.useUsual();
  app.runtime.answer("clEnqueueWriteBuffer", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.launches().back(),
            "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [16], null, "
            "[event 3], event 4)");
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}
