// Tests that the runtime's compiler does not see where autotuning results go.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdlib>
#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

static std::string valueOf(const char *name) {
  const char *value = std::getenv(name);
  return value ? value : "undefined";
}

static std::string bothValues() {
  return valueOf("CORVANE_AUTOTUNE") + " " + valueOf("CORVANE_AUTOTUNE_SHADOW");
}

namespace {
class HiddenVariable : public testing::Test {
protected:
  HiddenVariable() {
    const auto note = [this] { seen.push_back(bothValues()); };
    runtime.whenCalled("clBuildProgram", note);
    runtime.whenCalled("clLinkProgram", note);
  }

  FakeRuntime runtime;
  TempFolder folder;
  LoadedAgent agent{runtime, {{"CORVANE_AUTOTUNE", folder.text()}}};
  const DispatchTable &cl = agent.table();
  EnvGuard shadow{"CORVANE_AUTOTUNE_SHADOW", nullptr};
  std::vector<std::string> seen; ///< at each build or link: both variables
};
} // namespace

TEST_F(HiddenVariable, IsParkedDuringTheSecondBuildAlone) {
  build(cl, runtime.addProgram().log(spillLog));
  EXPECT_THAT(seen, ElementsAre(folder.text() + " undefined",
                                "undefined " + folder.text()));
  EXPECT_EQ(bothValues(), folder.text() + " undefined");
}

TEST_F(HiddenVariable, IsSeenByABuildThatSpillsNothing) {
  build(cl, runtime.addProgram());
  EXPECT_THAT(seen, ElementsAre(folder.text() + " undefined"));
}

TEST_F(HiddenVariable, IsParkedDuringTheSecondLinkAlone) {
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  cl.clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0, nullptr, nullptr,
                   nullptr, nullptr);
  EXPECT_THAT(seen, ElementsAre(folder.text() + " undefined",
                                "undefined " + folder.text()));
  EXPECT_EQ(bothValues(), folder.text() + " undefined");
}

TEST_F(HiddenVariable, IsTakenFromItsParkingPlaceWhenItIsUndefinedItself) {
  EnvGuard gone("CORVANE_AUTOTUNE", nullptr);
  shadow.set("/parked/before");
  build(cl, runtime.addProgram().log(spillLog));
  EXPECT_THAT(seen, ElementsAre("undefined /parked/before",
                                "undefined /parked/before"));
  EXPECT_EQ(bothValues(), "/parked/before undefined");
}

TEST_F(HiddenVariable, ReplacesWhatWasParkedBefore) {
  shadow.set("/parked/before");
  build(cl, runtime.addProgram().log(spillLog));
  EXPECT_THAT(seen, ElementsAre(folder.text() + " /parked/before",
                                "undefined " + folder.text()));
  EXPECT_EQ(bothValues(), folder.text() + " undefined");
}
