// Tests that the runtime's compiler does not see where autotuning results go.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdlib>
#include <string>
#include <thread>
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
    const auto record = [this] { seen.push_back(bothValues()); };
    runtime.whenCalled("clBuildProgram", record);
    runtime.whenCalled("clLinkProgram", record);
  }

  FakeRuntime runtime;
  TempFolder folder;
  LoadedAgent agent{runtime, {{"CORVANE_AUTOTUNE", folder.text()}}};
  const DispatchTable &cl = agent.table();
  EnvGuard shadow{"CORVANE_AUTOTUNE_SHADOW", nullptr};
  std::vector<std::string> seen; ///< both variables, at each build or link
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

namespace {
/// Something happens on another thread while the variable is hidden.
class WhileHidden : public HiddenVariable {
protected:
  WhileHidden() {
    program.kernel("k").kernel("k_coarsed_g0S4").log(spillLog);
    EXPECT_EQ(build(cl, program), CL_SUCCESS);
    kernel = cl.clCreateKernel(program, "k", nullptr);
    runtime.holdCallbacks();
    const std::size_t global = 16;
    EXPECT_EQ(cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                        &global, nullptr, 0, nullptr, nullptr),
              CL_SUCCESS);
  }
  ~WhileHidden() override { EXPECT_EQ(cl.clReleaseKernel(kernel), CL_SUCCESS); }

  template <typename Action> void buildAndMeanwhile(Action action) {
    runtime.whenCalled("clBuildProgram", [action] {
      if (!std::getenv("CORVANE_AUTOTUNE"))
        std::thread(action).join();
    });
    EXPECT_EQ(build(cl, runtime.addProgram().log(spillLog)), CL_SUCCESS);
  }

  ProgramScript program = runtime.addProgram();
  cl_kernel kernel = nullptr;
};
} // namespace

TEST_F(WhileHidden, ARunThatCompletesHasItsRowAtOnce) {
  const std::string before = folder.read(".auto.csv");
  buildAndMeanwhile([&] {
    EXPECT_EQ(runtime.fireCallbacks(), 2U);
    EXPECT_EQ(folder.read(".auto.csv"), before + "k,16,,,0,,,g0S4,1.000\n"
                                                 "k,16,,,0,,,baseline,1.000\n");
  });
}

TEST_F(WhileHidden, AFlushFindsTheDirectoryAndWhatHasRunSoFar) {
  const EnvGuard location("CORVANE_INSTALL_LOCATION", "/opt/x");
  const EnvGuard flushes("CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1");
  buildAndMeanwhile([&] {
    runtime.fireCallbacks();
    EXPECT_EQ(cl.clReleaseContext(runtime.context()), CL_SUCCESS);
  });
  EXPECT_THAT(folder.read("autotune.csv"),
              testing::HasSubstr("k,16,,,0,,,g0S4,1, \n"));
}

// The application has the last word: what it removed is not put back.
TEST_F(WhileHidden, IsNotWhenTheApplicationHasRemovedTheVariable) {
  const std::string before = folder.read(".auto.csv");
  const EnvGuard gone("CORVANE_AUTOTUNE", nullptr);
  const EnvGuard parked("CORVANE_AUTOTUNE_SHADOW", folder.text());
  EXPECT_EQ(runtime.fireCallbacks(), 2U);
  EXPECT_EQ(folder.read(".auto.csv"), before);
}
