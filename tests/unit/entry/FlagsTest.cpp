// Tests of the flags that the load writes and that no code of the library
// reads.

#include "agent/entry/Exports.h"
#include "tests/support/FakeRuntime.h"
#include "tests/unit/entry/ReadableFlags.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

// Loads and unloads the agent, and returns what was written meanwhile.
static WrittenFlags flagsOfLoad(FakeRuntime &runtime) {
  writtenFlags() = {};
  (void)clAgent_OnLoad(runtime.agent().operations());
  clAgent_OnUnload(runtime.agent().operations());
  return writtenFlags();
}

static std::vector<bool> bypassWith(const char *value) {
  FakeRuntime runtime;
  EnvGuard bypass("AGENT_BYPASS_VECTORIZATION_SAFETY_CHECK", value);
  return flagsOfLoad(runtime).bypass;
}

TEST(BypassVectorizationSafetyCheck, IsSetByAnyValue) {
  EXPECT_THAT(bypassWith("1"), ElementsAre(true));
  EXPECT_THAT(bypassWith("0"), ElementsAre(true));
  EXPECT_THAT(bypassWith(nullptr), ElementsAre(false));
}

TEST(BypassVectorizationSafetyCheck, SetToTheEmptyStringCountsAsSet) {
  EXPECT_THAT(bypassWith(""), ElementsAre(true));
}

TEST(BypassVectorizationSafetyCheck, IsNotTouchedByALoadThatFails) {
  FakeRuntime runtime;
  runtime.answer("SetICDDispatchTable", CL_MAP_FAILURE);
  EXPECT_THAT(flagsOfLoad(runtime).bypass, IsEmpty());
}

TEST(HooksInstalled, IsClearedFirstAndSetWhenTheTableWasAccepted) {
  FakeRuntime runtime;
  std::vector<bool> beforeTheSet;
  runtime.whenCalled("SetICDDispatchTable",
                     [&] { beforeTheSet = writtenFlags().hooksInstalled; });
  EXPECT_THAT(flagsOfLoad(runtime).hooksInstalled, ElementsAre(false, true));
  EXPECT_THAT(beforeTheSet, ElementsAre(false));
}

TEST(HooksInstalled, StaysClearedWhenATableOperationFails) {
  for (const char *operation : {"GetICDDispatchTable", "SetICDDispatchTable"}) {
    FakeRuntime runtime;
    runtime.answer(operation, CL_MAP_FAILURE);
    EXPECT_THAT(flagsOfLoad(runtime).hooksInstalled, ElementsAre(false));
  }
}
