// Tests of the load: what the runtime's table operations see.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeTable.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::SizeIs;

TEST(Load, GetsTheTableAndSetsItOnce) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  EXPECT_EQ(agent.status(), CL_SUCCESS);
  EXPECT_THAT(runtime.transcript(),
              ElementsAre("GetICDDispatchTable(agent, &, 952)",
                          "SetICDDispatchTable(agent, &, 952)"));
}

TEST(Load, ReturnsTheFailureOfGettingTheTableAndSetsNone) {
  FakeRuntime runtime;
  runtime.answer("GetICDDispatchTable", CL_MAP_FAILURE);
  ErrorCapture errors;
  LoadedAgent agent(runtime);

  EXPECT_EQ(agent.status(), CL_MAP_FAILURE);
  EXPECT_THAT(runtime.transcript(),
              ElementsAre("GetICDDispatchTable(agent, &, 952)"));
  EXPECT_EQ(errors.text(), "");
}

TEST(Load, HasWrittenItsBannerWhenGettingTheTableFails) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    runtime.answer("GetICDDispatchTable", CL_MAP_FAILURE);
    LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", log}});
    EXPECT_EQ(agent.status(), CL_MAP_FAILURE);
  });
  EXPECT_EQ(ended.diagnosticLog, "Frontend loaded\n");
}

TEST(Load, ReturnsTheFailureOfSettingTheTable) {
  FakeRuntime runtime;
  const auto own = entriesOf(runtime.ownTable());
  runtime.answer("SetICDDispatchTable", CL_MAP_FAILURE);
  ErrorCapture errors;
  LoadedAgent agent(runtime);

  EXPECT_EQ(agent.status(), CL_MAP_FAILURE);
  EXPECT_EQ(entriesOf(agent.table()), own);
  EXPECT_EQ(errors.text(), "");
}

TEST(Load, HasPreparedTheTimingLogWhenGettingTheTableFails) {
  FakeRuntime runtime;
  TempFolder folder;
  runtime.answer("GetICDDispatchTable", CL_MAP_FAILURE);
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()}});
  EXPECT_TRUE(folder.has(".auto.csv"));
}

TEST(Load, SetsATableThatIsCompleteAndNeverChangesAgain) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("k");
  LoadedAgent agent(runtime);
  ASSERT_THAT(runtime.agent().tablesSet, SizeIs(1));
  const auto whenItWasSet = entriesOf(runtime.agent().tablesSet[0]);
  build(agent.table(), program);
  agent.unload();

  const auto *place =
      static_cast<const DispatchTable *>(runtime.agent().lastPlace);
  EXPECT_EQ(entriesOf(*place), whenItWasSet);
}

TEST(Load, AfterAFailureCanSucceed) {
  FakeRuntime runtime;
  runtime.answer("SetICDDispatchTable", CL_MAP_FAILURE, 1);
  const cl_program program =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
  LoadedAgent agent(runtime);

  EXPECT_EQ(agent.loadAgain(), CL_SUCCESS);
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(agent.table(), program), "k");
}

TEST(Load, CallsNothingElseOfTheRuntime) {
  FakeRuntime runtime;
  { LoadedAgent agent(runtime); }
  EXPECT_EQ(runtime.callCount(), 2U);
}
