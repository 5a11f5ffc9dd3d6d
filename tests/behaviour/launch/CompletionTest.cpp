// Tests of what happens when a timed run completes, early or late and on any
// thread.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <filesystem>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
/// A kernel with a variant; each run of it takes a time of its own.
struct TimedKernel : TuningApplication {
  cl_kernel kernel;
  explicit TimedKernel(const Variables &more = {}) : TuningApplication(more) {
    program.kernel("k").kernel("k_coarsed_g0S4");
    kernel = create("k");
    runtime.takes("k_coarsed_g0S4", {1000, 3000, 5000, 7000});
    runtime.takes("k", {2000, 4000, 6000, 8000});
  }
  std::string logOf(const std::string &rows) const { return header + rows; }
};
} // namespace

TEST(Completion, WithinTheLaunchIsRecordedAtOnce) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16}, {2}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,2,,,g0S4,1.000\n"
                                 "k,16,,,2,,,baseline,2.000\n"));
}

TEST(Completion, IsRecordedWithTheSizesOfEveryDimension) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16, 6, 2}, {2, 3, 1}), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {16, 6}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,6,2,2,3,1,g0S4,1.000\n"
                                 "k,16,6,2,2,3,1,baseline,2.000\n"
                                 "k,16,6,,0,0,,g0S4,3.000\n"
                                 "k,16,6,,0,0,,baseline,4.000\n"));
}

TEST(Completion, OfALaterLaunchMayComeFirst) {
  TimedKernel app;
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {32}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.header);
  while (app.runtime.runLast()) {
  }
  EXPECT_EQ(app.log(), app.logOf("k,32,,,0,,,g0S4,1.000\n"
                                 "k,32,,,0,,,baseline,2.000\n"
                                 "k,16,,,0,,,g0S4,3.000\n"
                                 "k,16,,,0,,,baseline,4.000\n"));
}

TEST(Completion, IsRecordedFromAnotherThread) {
  TimedKernel app;
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.header);
  std::thread([&app] { EXPECT_EQ(app.runtime.fireCallbacks(), 2U); }).join();
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"));
}

TEST(Completion, NeedsNoLockOfTheHooks) {
  TimedKernel app;
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  // A runtime whose flush waits for the thread that calls back.
  app.runtime.whenCalled("clFlush", [&app] {
    std::thread([&app] { app.runtime.fireCallbacks(); }).join();
  });
  EXPECT_EQ(app.launch(app.kernel, {32}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"
                                 "k,32,,,0,,,g0S4,3.000\n"
                                 "k,32,,,0,,,baseline,4.000\n"));
}

TEST(Completion, MayComeAfterTheKernelIsGone) {
  TimedKernel app;
  app.runtime.late();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  app.runtime.runAll();
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"));
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(Completion, AfterTheFlushWritesNothingAndCrashesNothing) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {32}), CL_SUCCESS);
  app.agent.unload();
  const std::string flushed = app.log();
  const std::string table = app.folder.read("autotune.csv");
  EXPECT_NE(table, "");
  EXPECT_EQ(app.runtime.fireCallbacks(), 2U);
  EXPECT_EQ(app.log(), flushed);
  EXPECT_EQ(app.folder.read("autotune.csv"), table);
}

TEST(Completion, AfterTheFlushDoesNotBringADeletedLogBack) {
  TimedKernel app;
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.agent.unload();
  std::filesystem::remove(app.folder.file(app.logName));
  EXPECT_EQ(app.runtime.fireCallbacks(), 2U);
  EXPECT_FALSE(app.folder.has(app.logName));
}

TEST(Completion, OfTheFirstLoadWritesNothingIntoTheSecond) {
  TimedKernel app;
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.agent.unload();
  EXPECT_EQ(app.agent.loadAgain(), CL_SUCCESS);
  EXPECT_EQ(app.runtime.fireCallbacks(), 2U);
  EXPECT_EQ(app.log(), app.header);
}

TEST(Completion, RestoresALogThatWasDeletedWithEveryTimeSoFar) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {32}), CL_SUCCESS);
  std::filesystem::remove(app.folder.file(app.logName));
  EXPECT_EQ(app.launch(app.kernel, {15}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"
                                 "k,32,,,0,,,g0S4,3.000\n"
                                 "k,32,,,0,,,baseline,4.000\n"
                                 "k,15,,,0,,,baseline,6.000\n"));
}

TEST(Completion, RestoresALogThatWasEmptied) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  ASSERT_TRUE(app.folder.write(app.logName, ""));
  EXPECT_EQ(app.launch(app.kernel, {15}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"
                                 "k,15,,,0,,,baseline,4.000\n"));
}

TEST(Completion, SurvivesAFolderThatIsGoneAndRestoresTheLogInItsSuccessor) {
  TimedKernel app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  std::filesystem::remove_all(app.folder.path());
  EXPECT_EQ(app.launch(app.kernel, {15}), CL_SUCCESS);
  std::filesystem::create_directory(app.folder.path());
  EXPECT_EQ(app.launch(app.kernel, {17}), CL_SUCCESS);
  EXPECT_EQ(app.log(), app.logOf("k,16,,,0,,,g0S4,1.000\n"
                                 "k,16,,,0,,,baseline,2.000\n"
                                 "k,15,,,0,,,baseline,4.000\n"
                                 "k,17,,,0,,,baseline,6.000\n"));
}
