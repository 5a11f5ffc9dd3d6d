// Tests of the diagnostic log, which is kept in memory and written to its file
// when the process ends.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/GroupedDigits.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <clocale>
#include <iostream>
#include <locale>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

static constexpr const char *variableName = "CORVANE_DUMP_LOG";
static constexpr const char *banner = "Frontend loaded\n";

// Loads and unloads the agent while the variable names \p path; null: while it
// is undefined. The load writes a banner into the log.
static void loadOnce(const char *path) {
  FakeRuntime runtime;
  EnvGuard dumpLog(variableName, path);
  LoadedAgent agent(runtime);
  EXPECT_EQ(agent.status(), CL_SUCCESS);
}

TEST(DiagnosticLog, GoesNowhereWhenTheVariableIsUndefined) {
  const Ended ended = runToItsEnd([](const std::string &) {
    assignForGood(variableName, nullptr);
    loadOnce(nullptr);
  });
  EXPECT_EQ(ended.errorText, "");
  EXPECT_THAT(ended.files, IsEmpty());
}

TEST(DiagnosticLog, InAFolderThatDoesNotExistLeavesNothingAndTellsNoLength) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    const std::string path = log + ".missing/log.txt";
    assignForGood(variableName, path.c_str());
    loadOnce(path.c_str());
  });
  EXPECT_EQ(ended.errorText, "");
  EXPECT_THAT(ended.files, IsEmpty());
}

TEST(DiagnosticLog, AtTheEndTellsItsLengthAndIsAppendedToItsFile) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    writeBytes(log, "before\n");
    loadOnce(log.c_str());
    EXPECT_EQ(readBytes(log), "before\n");
  });
  EXPECT_EQ(ended.errorText, "16\n");
  EXPECT_EQ(ended.diagnosticLog, std::string("before\n") + banner);
}

TEST(DiagnosticLog, LosesWhatIsWrittenWhileTheVariableIsUndefined) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    loadOnce(nullptr);
    loadOnce(log.c_str());
    loadOnce(nullptr);
  });
  EXPECT_EQ(ended.errorText, "16\n");
  EXPECT_EQ(ended.diagnosticLog, banner);
}

TEST(DiagnosticLog, IsDiscardedWhenTheVariableIsUndefinedAtTheEnd) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    loadOnce(log.c_str());
    assignForGood(variableName, nullptr);
  });
  EXPECT_EQ(ended.errorText, "");
  EXPECT_THAT(ended.files, IsEmpty());
}

TEST(DiagnosticLog, GoesToTheFileThatIsNamedAtTheEnd) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    loadOnce(log.c_str());
    assignForGood(variableName, (log + ".other").c_str());
  });
  EXPECT_EQ(ended.diagnosticLog, "");
  EXPECT_EQ(ended.files.at("log.txt.other"), banner);
}

TEST(DiagnosticLog, DefinedOnlyAfterTheLastTextHasNoFile) {
  const Ended ended =
      runToItsEnd([](const std::string &) { loadOnce(nullptr); });
  EXPECT_EQ(ended.errorText, "");
  EXPECT_THAT(ended.files, IsEmpty());
}

TEST(DiagnosticLog, TellsItsLengthTheSameInEveryLocale) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    const std::locale grouped(std::locale::classic(), new GroupedDigits);
    std::locale::global(grouped);
    std::cerr.imbue(grouped);
    for (int load = 0; load != 100; ++load)
      loadOnce(log.c_str());
  });
  EXPECT_EQ(ended.errorText, "1600\n");
  EXPECT_EQ(ended.diagnosticLog.size(), 1600U);
}
