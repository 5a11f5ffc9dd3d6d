// Tests of the raw timing log as it grows on disk, byte for byte.

#include "session/LogAppender.h"

#include "TestState.h"
#include "agent/Flags.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

using namespace corvane;
using namespace corvane::test;

namespace {

struct LogAppender : testing::Test {
  TempFolder folder{folderInMemory()};
  EnvGuard directory{"CORVANE_AUTOTUNE", folder.text()};
  TestState state;

  std::string log() const { return folder.read(".auto.csv"); }
};

} // namespace

TEST_F(LogAppender, IsCreatedWithItsHeaderOnly) {
  EXPECT_TRUE(createRawLog(folder.text()));
  EXPECT_EQ(log(), logHeaderText);
}

TEST_F(LogAppender, IsEmptiedByAnotherLoad) {
  ASSERT_TRUE(folder.write(".auto.csv", std::string(5000, 'x')));
  EXPECT_TRUE(createRawLog(folder.text()));
  EXPECT_EQ(log(), logHeaderText);
}

TEST_F(LogAppender, StaysWholeWhenLoadsEmptyItWhileRunsComplete) {
  const std::string row = "a,2,,,1,,,baseline,1.000\n";
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  for (int round = 0; round != 500 && !HasFailure(); ++round) {
    ASSERT_TRUE(createRawLog(folder.text()));
    std::atomic<bool> begun{false};
    std::thread runs([&] {
      for (int i = 0; i != 8; ++i) {
        begun = true;
        state.complete(launch, "", 1000);
      }
    });
    while (!begun)
      std::this_thread::yield();
    for (int i = 0; i != 8; ++i)
      EXPECT_TRUE(createRawLog(folder.text()));
    runs.join();

    const std::string written = log();
    std::string whole = logHeaderText;
    while (whole.size() < written.size())
      whole += row;
    EXPECT_EQ(written, whole);
  }
}

TEST_F(LogAppender, CannotBeCreatedInAFolderThatDoesNotExist) {
  EXPECT_FALSE(createRawLog(folder.file("missing/deeper")));
  EXPECT_FALSE(folder.has("missing"));
}

TEST_F(LogAppender, CannotBeCreatedWhereAFolderHasItsName) {
  std::filesystem::create_directory(folder.file(".auto.csv"));
  EXPECT_FALSE(createRawLog(folder.text()));
}

TEST_F(LogAppender, NamesTheOriginalBaseline) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &launch = state.addLaunch("k", 1, {1024, 0, 0}, {64, 0, 0});
  state.complete(launch, "", 12345);
  EXPECT_EQ(log(),
            std::string(logHeaderText) + "k,1024,,,64,,,baseline,12.345\n");
}

TEST_F(LogAppender, NamesAVariantByItsSpecText) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &launch = state.addLaunch("k", 1, {1024, 0, 0}, {64, 0, 0});
  state.complete(launch, "g0S4", 9500);
  EXPECT_EQ(log(), std::string(logHeaderText) + "k,1024,,,64,,,g0S4,9.500\n");
}

TEST_F(LogAppender, GetsOneRowForEachCompletedRunInOrderOfCompletion) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &first = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  LaunchRecord &second = state.addLaunch("b", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(second, "", 3000);
  state.complete(first, "g0S4", 1000);
  state.complete(first, "", 2000);
  EXPECT_EQ(log(), std::string(logHeaderText) + "b,2,,,1,,,baseline,3.000\n"
                                                "a,2,,,1,,,g0S4,1.000\n"
                                                "a,2,,,1,,,baseline,2.000\n");
}

TEST_F(LogAppender, IsRecreatedWithEveryRowAfterItWasDeleted) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &first = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  LaunchRecord &second = state.addLaunch("b", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(second, "", 3000);
  state.complete(first, "g0S4", 1000);
  std::filesystem::remove(folder.file(".auto.csv"));

  state.complete(first, "", 2000);

  EXPECT_EQ(log(), std::string(logHeaderText) + "a,2,,,1,,,g0S4,1.000\n"
                                                "a,2,,,1,,,baseline,2.000\n"
                                                "b,2,,,1,,,baseline,3.000\n");
}

TEST_F(LogAppender, IsRecreatedAfterItWasEmptied) {
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "g0S4", 1000);
  ASSERT_TRUE(folder.write(".auto.csv", ""));
  state.complete(launch, "", 2000);
  EXPECT_EQ(log(), std::string(logHeaderText) + "a,2,,,1,,,g0S4,1.000\n"
                                                "a,2,,,1,,,baseline,2.000\n");
}

TEST_F(LogAppender, IsNotLookedAtAfterItsFirstByte) {
  ASSERT_TRUE(folder.write(".auto.csv", "#\n"));
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "", 1000);
  EXPECT_EQ(log(), "#\na,2,,,1,,,baseline,1.000\n");
}

TEST_F(LogAppender, FollowsTheVariableToAnotherDirectory) {
  ASSERT_TRUE(createRawLog(folder.text()));
  TempFolder other;
  directory.set(other.text());
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "", 1000);
  EXPECT_EQ(log(), logHeaderText);
  EXPECT_EQ(other.read(".auto.csv"),
            std::string(logHeaderText) + "a,2,,,1,,,baseline,1.000\n");
}

TEST_F(LogAppender, GetsNothingWhileTheVariableIsAway) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  directory.set(nullptr);
  state.complete(launch, "", 1000);
  EXPECT_EQ(log(), logHeaderText);
}

TEST_F(LogAppender, IsNotTouchedWithoutAutotuning) {
  setAutotuneOutput(false);
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "", 1000);
  EXPECT_FALSE(folder.has(".auto.csv"));
}

TEST_F(LogAppender, IsNotTouchedOnceTheHistoryIsClosed) {
  state.history().open = false;
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "", 1000);
  EXPECT_FALSE(folder.has(".auto.csv"));
}

TEST_F(LogAppender, IsLostInSilenceWithItsDirectoryAndComesBackWithIt) {
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  directory.set(folder.file("later"));
  testing::internal::CaptureStderr();
  state.complete(launch, "g0S4", 1000);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(folder.has("later"));

  std::filesystem::create_directory(folder.file("later"));
  state.complete(launch, "", 2000);
  EXPECT_EQ(folder.read("later/.auto.csv"), std::string(logHeaderText) +
                                                "a,2,,,1,,,g0S4,1.000\n"
                                                "a,2,,,1,,,baseline,2.000\n");
}

TEST_F(LogAppender, ThatIsAFolderIsLeftAlone) {
  std::filesystem::create_directory(folder.file(".auto.csv"));
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  state.complete(launch, "", 1000);
  EXPECT_TRUE(std::filesystem::is_empty(folder.file(".auto.csv")));
}

TEST_F(LogAppender, KeepsNamesOfAnyBytes) {
  ASSERT_TRUE(createRawLog(folder.text()));
  LaunchRecord &launch = state.addLaunch("\xff %s\"<,", 0, {}, {});
  state.complete(launch, "%n", 1);
  EXPECT_EQ(log(), std::string(logHeaderText) + "\xff %s\"<,,,,,,,,%n,0.001\n");
}

TEST_F(LogAppender, GetsNoRowFromALaunchWithoutTimings) {
  LaunchRecord &launch = state.addLaunch("a", 1, {2, 0, 0}, {1, 0, 0});
  const std::lock_guard<std::mutex> lock(state.history().lock);
  appendTiming(state.history(), launch);
  EXPECT_FALSE(folder.has(".auto.csv"));
}
