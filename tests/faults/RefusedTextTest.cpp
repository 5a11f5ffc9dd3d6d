// Tests that reports and the diagnostic log never cost the application a call.

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/AgentBoundary.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeRuntime.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;

namespace {
/// An agent in normal mode that knows a kernel without variants.
struct PlainKernel {
  FakeRuntime runtime;
  EnvGuard dumpLog;
  AgentBoundary boundary{runtime};
  cl_kernel kernel = nullptr;

  explicit PlainKernel(const char *logPath)
      : dumpLog(variable::dumpLog, logPath) {
    const cl_program program = runtime.addProgram().kernel("k");
    boundary.load();
    build(boundary.table(), program);
    kernel = boundary.table().clCreateKernel(program, "k", nullptr);
  }
  ~PlainKernel() { boundary.unload(); }

  cl_int launch() {
    const std::size_t global = 16;
    return boundary.table().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1,
                                                   nullptr, &global, nullptr, 0,
                                                   nullptr, nullptr);
  }
};
} // namespace

TEST(RefusedText, OfAReportIsWrittenWithoutAnyMemory) {
  PlainKernel app(nullptr);
  app.runtime.answer("clEnqueueNDRangeKernel", CL_INVALID_GLOBAL_WORK_SIZE);
  app.runtime.answer("clReleaseProgram", -9999);
  ErrorCapture errors;
  AgentMemory::refuseFrom(1);
  EXPECT_EQ(app.launch(), CL_INVALID_GLOBAL_WORK_SIZE);
  EXPECT_EQ(app.boundary.table().clReleaseProgram(nullptr), -9999);
  EXPECT_FALSE(AgentMemory::refuseNothing());
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 910: CL Error: CL_INVALID_GLOBAL_WORK_SIZE\n"
            "QrlAgent:: 148: CL Error: unknown code(-9999)\n");
}

TEST(RefusedText, OfTheDiagnosticLogIsLostAndTheLaunchIsNot) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    PlainKernel app(log.c_str());
    app.launch();
    AgentMemory::refuseFrom(1);
    for (int i = 0; i != 100; ++i)
      EXPECT_EQ(app.launch(), CL_SUCCESS);
    EXPECT_TRUE(AgentMemory::refuseNothing());
  });
  EXPECT_THAT(ended.diagnosticLog,
              testing::StartsWith("Frontend loaded\n"
                                  "No Corvane's generated kernel for k => "
                                  "Launching original kernel\n"));
}

namespace {
class RefusedAtTheEnd : public testing::TestWithParam<std::size_t> {};

// From now on all code of the process counts as the agent's.
void refuseFromHereToTheEnd(std::size_t nth) {
  static const auto &agent = *new OnSide(Side::Agent);
  (void)agent;
  AgentMemory::refuseFrom(nth);
}
} // namespace

TEST_P(RefusedAtTheEnd, DoesNotChangeHowTheProcessEnds) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    PlainKernel(log.c_str()).launch();
    refuseFromHereToTheEnd(GetParam());
  });
  EXPECT_THAT(ended.diagnosticLog,
              testing::AnyOf("", testing::StartsWith("Frontend loaded\n")));
}

// The results would be written when the process ends, for which there is no
// memory.
TEST_P(RefusedAtTheEnd, LeavesTheResultsAndLetsTheProcessGo) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    const std::string folder = log + ".results";
    assignForGood(variable::dumpLog, nullptr);
    assignForGood(variable::autotune, folder.c_str());
    assignForGood(variable::installLocation, "/nowhere");
    static auto &runtime = *new FakeRuntime;
    for (const char *name : {variable::autotune, variable::installLocation})
      assignForGood(name, name == variable::autotune ? folder.c_str() : "/x");
    static auto &boundary = *new AgentBoundary(runtime);
    boundary.load();
    refuseFromHereToTheEnd(GetParam());
  });
  EXPECT_EQ(ended.files.count("log.txt.results/.auto.csv"), 1U);
}

INSTANTIATE_TEST_SUITE_P(Requests, RefusedAtTheEnd,
                         testing::Values(1, 2, 3, 4, 100));
