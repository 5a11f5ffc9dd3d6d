// Tests of the flush: the report is made from the log, and the state ends.

#include "session/Flush.h"

#include "TestState.h"
#include "agent/Flags.h"
#include "session/LogAppender.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <future>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;

namespace {

struct Flush : testing::Test {
  TempFolder folder;
  EnvGuard directory{"CORVANE_AUTOTUNE", folder.file("out")};
  EnvGuard location{"CORVANE_INSTALL_LOCATION", "/opt/x"};
  TestState state;

  Flush() { std::filesystem::create_directory(folder.file("out")); }

  void addLog(const std::string &rows) {
    ASSERT_TRUE(folder.write("out/.auto.csv", "header\n" + rows));
  }

  /// Flushes and returns what was written to standard error.
  static std::string flush() {
    testing::internal::CaptureStderr();
    flushAutotuneResults();
    return testing::internal::GetCapturedStderr();
  }
};

} // namespace

TEST_F(Flush, TurnsTheLogIntoTableAndReport) {
  addLog("k,1024,,,64,,,baseline,12.345\n"
         "k,1024,,,64,,,g0S4,9.500\n"
         "k,1024,,,64,,,baseline,40.000\n");
  EXPECT_EQ(flush(), "");
  EXPECT_EQ(folder.read("out/autotune.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time,outlier\n"
            "k,1024,,,64,,,g0S4,9.5, \n"
            "k,1024,,,64,,,baseline,12.345, \n"
            "k,1024,,,64,,,baseline,40,*\n");
  EXPECT_TRUE(folder.has("out/main.html"));
  EXPECT_TRUE(folder.has("out/html/index.html"));
  EXPECT_TRUE(folder.has("out/html/k_1024___64__.html"));
  EXPECT_TRUE(folder.has("out/html/k_1024___64___table.html"));
  EXPECT_TRUE(folder.has("out/html/k_1024___64___graph.html"));
}

TEST_F(Flush, ReadsBackWhatTheRunsWrote) {
  ASSERT_TRUE(createRawLog(folder.file("out")));
  LaunchRecord &launch = state.addLaunch("k", 2, {64, 32, 0}, {8, 4, 0});
  state.complete(launch, "g0S4", 9500);
  state.complete(launch, "", 12345);
  EXPECT_EQ(flush(), "");
  EXPECT_EQ(folder.read("out/autotune.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time,outlier\n"
            "k,64,32,,8,4,,g0S4,9.5, \n"
            "k,64,32,,8,4,,baseline,12.345, \n");
}

TEST_F(Flush, LeavesTheLogInPlace) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  flush();
  EXPECT_EQ(folder.read("out/.auto.csv"),
            "header\nk,1024,,,64,,,baseline,1.000\n");
}

TEST_F(Flush, WritesAnEmptyReportWithoutALog) {
  EXPECT_EQ(flush(), "");
  EXPECT_EQ(folder.read("out/autotune.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time,outlier\n");
  EXPECT_THAT(folder.read("out/html/index.html"), HasSubstr("<ul>\n</ul>\n"));
  EXPECT_THAT(folder.read("out/main.html"), HasSubstr("src=\"html/\""));
}

TEST_F(Flush, WritesTheResultsOnceThoughUnloadAndDetachBothAsk) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  flush();
  std::filesystem::remove(folder.file("out/autotune.csv"));
  EXPECT_EQ(flush(), "");
  EXPECT_FALSE(folder.has("out/autotune.csv"));
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, DestroysTheState) {
  flush();
  EXPECT_EQ(agentState(), nullptr);
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, LetsAUserOfTheStateFinishFirst) {
  {
    const StatePin pin;
    flush();
    EXPECT_EQ(agentState(), nullptr);
    EXPECT_EQ(TestState::destroyedStates(), 0);
  }
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, OnlyDropsTheStateWithoutAutotuning) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  setAutotuneOutput(false);
  location.set(nullptr);
  EXPECT_EQ(flush(), "");
  EXPECT_FALSE(folder.has("out/autotune.csv"));
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, WritesNoReportWithoutAnInstallLocation) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  location.set(nullptr);
  EXPECT_EQ(flush(), "CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
  EXPECT_FALSE(folder.has("out/autotune.csv"));
  EXPECT_FALSE(folder.has("out/html"));
  EXPECT_TRUE(folder.has("out/.auto.csv"));
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, LoadsTheScriptFromAnInstallLocationInQuotes) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  location.set("\"C:\\tools\\x\"");
  EXPECT_EQ(flush(), "");
  EXPECT_THAT(folder.read("out/html/k_1024___64___graph.html"),
              HasSubstr("src=\"file://C:/tools/x/dygraph-combined.js\""));
}

TEST_F(Flush, AcceptsDirectoriesThatExist) {
  std::filesystem::create_directory(folder.file("out/html"));
  EXPECT_EQ(flush(), "");
  EXPECT_TRUE(folder.has("out/html/index.html"));
}

TEST_F(Flush, CreatesTheDirectoryOfTheMoment) {
  directory.set(folder.file("new"));
  EXPECT_EQ(flush(), "");
  EXPECT_TRUE(folder.has("new/html/index.html"));
  EXPECT_FALSE(folder.has("out/autotune.csv"));
}

TEST_F(Flush, SaysThatTheDirectoryCannotBeCreated) {
  directory.set(folder.file("missing/deeper"));
  EXPECT_EQ(flush(), "ensureOutputDir() error\n");
  EXPECT_FALSE(folder.has("missing"));
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, SaysSoWhenTheVariableIsGone) {
  directory.set(nullptr);
  EXPECT_EQ(flush(), "ensureOutputDir() error\n");
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST_F(Flush, ClosesTheHistoryToLaterRuns) {
  ASSERT_TRUE(createRawLog(folder.file("out")));
  LaunchRecord &launch = state.addLaunch("k", 0, {}, {});
  LaunchHistory *history = agentState()->launchRecords.get();
  EXPECT_TRUE(history->open);
  flush();
  EXPECT_FALSE(state.history().open);
  const std::string before = folder.read("out/.auto.csv");
  state.complete(launch, "", 1);
  EXPECT_EQ(folder.read("out/.auto.csv"), before);
}

TEST_F(Flush, DoesNotWaitForTheLockOfTheHistoryForEver) {
  std::promise<void> held;
  std::promise<void> done;
  std::thread holder([&] {
    const std::lock_guard<std::mutex> lock(state.history().lock);
    held.set_value();
    done.get_future().wait();
  });
  held.get_future().wait();
  EXPECT_EQ(flush(), ""); // hangs here if it waits
  done.set_value();
  holder.join();
  EXPECT_TRUE(folder.has("out/main.html"));
  EXPECT_FALSE(state.history().open);
}

TEST_F(Flush, IsTheWorkOfOneOfManyThreads) {
  addLog("k,1024,,,64,,,baseline,1.000\n");
  location.set(nullptr); // each flush that does its work writes one line
  testing::internal::CaptureStderr();
  std::vector<std::thread> threads;
  for (int i = 0; i != 8; ++i)
    threads.emplace_back(flushAutotuneResults);
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
  EXPECT_EQ(TestState::destroyedStates(), 1);
}

TEST(EnsureOutputDir, CreatesBothFolders) {
  TempFolder folder;
  ReportJob job;
  job.outputDirectory = folder.file("out");
  EXPECT_EQ(ensureOutputDir(job), 0);
  EXPECT_TRUE(std::filesystem::is_directory(folder.file("out/html")));
  EXPECT_EQ(ensureOutputDir(job), 0);
}

TEST(EnsureOutputDir, TellsWhichFolderCouldNotBeCreated) {
  TempFolder folder;
  ReportJob job;
  job.outputDirectory = folder.file("missing/deeper");
  EXPECT_EQ(ensureOutputDir(job), 1);
  ASSERT_TRUE(folder.write("file", ""));
  job.outputDirectory = folder.file("file");
  EXPECT_EQ(ensureOutputDir(job), 2);
  job.outputDirectory = "";
  EXPECT_EQ(ensureOutputDir(job), 1);
}

TEST(EnsureOutputDir, RemovesNothing) {
  TempFolder folder;
  std::filesystem::create_directory(folder.file("html"));
  ASSERT_TRUE(folder.write("html/old.html", "old"));
  ReportJob job;
  job.outputDirectory = folder.text();
  EXPECT_EQ(ensureOutputDir(job), 0);
  EXPECT_EQ(folder.read("html/old.html"), "old");
}
