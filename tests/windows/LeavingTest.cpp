// Tests that the results are written when the library leaves without an unload.

#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"
#include "tests/windows/Process.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::HasSubstr;
using testing::IsEmpty;

static Finished leave(const TempFolder &folder, const std::string &mode,
                      Variables more = {}) {
  more.emplace_back("CORVANE_AUTOTUNE", folder.text());
  more.emplace_back("CORVANE_INSTALL_LOCATION", "C:\\tools");
  return runProgram("leaving_host", mode, more);
}

static Variables logInto(const TempFolder &folder) {
  return {{"CORVANE_DUMP_LOG", folder.file("log.txt")}};
}

static void expectReport(const TempFolder &folder) {
  EXPECT_THAT(folder.read("autotune.csv"), HasSubstr("g0S2,2.5, \n"));
  EXPECT_THAT(folder.read("main.html"), HasSubstr("scale_64___8__.html"));
  EXPECT_THAT(folder.read("html/index.html"), HasSubstr("scale"));
  EXPECT_THAT(folder.read("html/scale_64___8___graph.html"),
              HasSubstr("file://C:/tools/dygraph-combined.js"));
  EXPECT_THAT(folder.read("html/scale_64___8___table.html"),
              HasSubstr("baseline"));
}

TEST(Leaving, ByBeingFreedWritesReportAndLog) {
  TempFolder folder;
  const Finished host = leave(folder, "free", logInto(folder));
  EXPECT_EQ(host.exitCode, 0U);
  EXPECT_EQ(host.errors, "16\n");
  expectReport(folder);
  EXPECT_EQ(folder.read("log.txt"), "Frontend loaded\n");
}

TEST(Leaving, ByTheProcessAfterItWasFreedInVainWritesReportAndLog) {
  TempFolder folder;
  const Finished host = leave(folder, "kept", logInto(folder));
  EXPECT_EQ(host.exitCode, 0U);
  EXPECT_EQ(host.errors, "16\n");
  expectReport(folder);
  EXPECT_EQ(folder.read("log.txt"), "Frontend loaded\n");
}

TEST(Leaving, WithTheProcessWritesReportAndLog) {
  TempFolder folder;
  const Finished host = leave(folder, "exit", logInto(folder));
  EXPECT_EQ(host.exitCode, 0U);
  EXPECT_EQ(host.errors, "16\n");
  expectReport(folder);
  EXPECT_EQ(folder.read("log.txt"), "Frontend loaded\n");
}

TEST(Leaving, WithTheProcessWaitsForNoThreadThatWasEndedWithALock) {
  TempFolder folder;
  const Finished host = leave(folder, "locked");
  EXPECT_EQ(host.exitCode, 0U) << host.errors;
  expectReport(folder);
}

// The length of the log is written to a stream whose lock is never released. If
// the system ends the process at that moment, the report is already written.
TEST(Leaving, WithTheProcessWritesTheReportBeforeTheLog) {
  TempFolder folder;
  leave(folder, "locked", logInto(folder));
  expectReport(folder);
}

TEST(Leaving, WithoutAnInstallLocationSaysSoOnce) {
  TempFolder folder;
  EnvGuard none("CORVANE_INSTALL_LOCATION", nullptr);
  const Finished host =
      runProgram("leaving_host", "exit", {{"CORVANE_AUTOTUNE", folder.text()}});
  EXPECT_EQ(host.exitCode, 0U);
  EXPECT_EQ(host.errors, "CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
  EXPECT_TRUE(folder.has(".auto.csv"));
  EXPECT_FALSE(folder.has("autotune.csv"));
  EXPECT_FALSE(folder.has("html"));
}
