// Tests that after an autotuned launch the buffers are as the application's
// kernel alone leaves them.

#include "tests/behaviour/launch/Application.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

using Bytes = std::vector<unsigned char>;

namespace {
// y = y * a + x, in place.
void scaleAndAdd(const Launch &launch) {
  Bytes &y = launch.buffer(0);
  for (std::size_t i = 0; i != y.size(); ++i)
    y[i] = static_cast<unsigned char>(y[i] * launch.value<cl_uchar>(2) +
                                      launch.buffer(1)[i]);
}

void spoil(const Launch &launch) {
  launch.buffer(0).assign(launch.buffer(0).size(), 0xEE);
  launch.buffer(1).assign(launch.buffer(1).size(), 0xEE);
}

struct InPlace : TuningApplication {
  cl_kernel kernel;
  cl_mem y;
  cl_mem x;
  InPlace() {
    program.kernel("k", 3, scaleAndAdd);
    program.kernel("k_coarsed_g0S2", 3, scaleAndAdd);
    program.kernel("k_coarsed_g0S4", 3, spoil);
    kernel = create("k");
    y = createBuffer({1, 2, 3});
    x = createBuffer({10, 20, 30});
    set(kernel, 0, y);
    set(kernel, 1, x);
    set(kernel, 2, cl_uchar{2});
  }
  void expectResults() {
    EXPECT_THAT(runtime.bytes(y), ElementsAre(12, 24, 36));
    EXPECT_THAT(runtime.bytes(x), ElementsAre(10, 20, 30));
  }
};
} // namespace

TEST(BufferContents, AreThoseOfTheApplicationsKernelAndNotOfTheVariant) {
  TuningApplication app;
  app.program.kernel("k", 1, [](const Launch &l) { l.buffer(0)[0] = 1; });
  app.program.kernel("k_coarsed_g0S4", 1,
                     [](const Launch &l) { l.buffer(0).assign(2, 99); });
  cl_kernel kernel = app.create("k");
  cl_mem output = app.createBuffer({7, 8});
  app.set(kernel, 0, output);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.bytes(output), ElementsAre(1, 8));
}

TEST(BufferContents, AreRightForAKernelThatWorksInPlace) {
  InPlace app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.expectResults();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.bytes(app.y), ElementsAre(34, 68, 102));
}

TEST(BufferContents, AreRightWhenEverythingRunsLateAndTheYoungestFirst) {
  InPlace app;
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.bytes(app.y), ElementsAre(1, 2, 3));
  while (app.runtime.runLast()) {
  }
  app.expectResults();
}

TEST(BufferContents, AreTheSameForEveryVersion) {
  TuningApplication app;
  std::vector<Bytes> seen;
  const auto lookAndSpoil = [&seen](const Launch &launch) {
    seen.push_back(launch.buffer(0));
    launch.buffer(0).assign(3, 0xEE);
  };
  app.program.kernel("k", 1, lookAndSpoil);
  app.program.kernel("k_coarsed_g0S2", 1, lookAndSpoil);
  app.program.kernel("k_coarsed_g0S4", 1, lookAndSpoil);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, app.createBuffer({1, 2, 3}));
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(seen, testing::AllOf(SizeIs(3), Each(ElementsAre(1, 2, 3))));
}

TEST(BufferContents, AreRightWhenTwoArgumentsNameOneBuffer) {
  InPlace app;
  app.set(app.kernel, 1, app.y);
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  while (app.runtime.runLast()) {
  }
  EXPECT_THAT(app.runtime.bytes(app.y), ElementsAre(3, 6, 9));
}

TEST(BufferContents, AreRightWhenLaunchesDependOnOneAnother) {
  InPlace app;
  app.runtime.late();
  cl_event first = nullptr;
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, &first), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, nullptr, {first}), CL_SUCCESS);
  while (app.runtime.runLast()) {
  }
  EXPECT_THAT(app.runtime.bytes(app.y), ElementsAre(34, 68, 102));
  EXPECT_EQ(app.cl.clReleaseEvent(first), CL_SUCCESS);
}

TEST(BufferContents, AreRightAfterABufferWasReplacedByAnother) {
  InPlace app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.cl.clReleaseMemObject(app.y), CL_SUCCESS);
  app.runtime.recycleHandles();
  app.y = app.createBuffer({4, 5, 6, 7, 8});
  cl_mem wider = app.createBuffer({1, 1, 1, 1, 1});
  app.set(app.kernel, 0, app.y);
  app.set(app.kernel, 1, wider);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.bytes(app.y), ElementsAre(9, 11, 13, 15, 17));
  EXPECT_THAT(app.launches(), SizeIs(3));
}
