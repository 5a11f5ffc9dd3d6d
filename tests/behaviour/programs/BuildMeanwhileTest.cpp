// Tests of what other threads do while the runtime builds or links. The runtime
// does not return before those threads are done, so a hook that made them wait
// for the build would never end.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdlib>
#include <functional>
#include <optional>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
/// Has another thread do something during a call to the runtime.
class Meanwhile : public testing::TestWithParam<bool> {
protected:
  Meanwhile() {
    const bool autotunes = GetParam();
    agent.emplace(runtime, autotunes
                               ? Variables{{"CORVANE_AUTOTUNE", folder.text()}}
                               : Variables{});
    EXPECT_EQ(build(cl(), program), CL_SUCCESS);
    runtime.forgetTranscript();
  }

public: // for a callback
  using Variables = std::vector<std::pair<std::string, std::string>>;

  const DispatchTable &cl() const { return agent->table(); }

  /// In the \p nth call to \p entry from now on, before the runtime works.
  void inCall(const char *entry, std::function<void()> action, int nth = 1) {
    runtime.whenCalled(entry, [this, action, nth] {
      if (++calls == nth)
        std::thread(action).join();
    });
  }
  void inBuild(std::function<void()> action, int nth = 1) {
    inCall("clBuildProgram", std::move(action), nth);
  }

  cl_int launch(cl_kernel kernel) {
    const std::size_t global = 16;
    return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                       &global, nullptr, 0, nullptr, nullptr);
  }

  cl_program link() {
    return cl().clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0,
                              nullptr, nullptr, nullptr, nullptr);
  }

  /// What an application does with a program that is built.
  void useProgram() {
    cl_int status = CL_INVALID_VALUE;
    cl_kernel kernel = cl().clCreateKernel(program, "k", &status);
    EXPECT_EQ(status, CL_SUCCESS);
    const cl_int value = 5;
    EXPECT_EQ(cl().clSetKernelArg(kernel, 0, sizeof value, &value), CL_SUCCESS);
    EXPECT_EQ(launch(kernel), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
    cl_mem buffer = createBuffer(runtime, cl());
    EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
    used = true;
  }

  FakeRuntime runtime;
  const TempFolder folder;
  std::optional<LoadedAgent> agent;
  const cl_program program =
      runtime.addProgram().kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  int calls = 0;
  bool used = false;
};

/// The same in autotuning mode alone.
class DuringASecondBuild : public Meanwhile {};

std::string modeName(const testing::TestParamInfo<bool> &mode) {
  return mode.param ? "AutotuningMode" : "NormalMode";
}
} // namespace

INSTANTIATE_TEST_SUITE_P(In, Meanwhile, testing::Bool(), modeName);
INSTANTIATE_TEST_SUITE_P(In, DuringASecondBuild, testing::Values(true),
                         modeName);

TEST_P(Meanwhile, AnotherThreadUsesAProgramDuringABuild) {
  inBuild([this] { useProgram(); });
  EXPECT_EQ(build(cl(), runtime.addProgram()), CL_SUCCESS);
  EXPECT_TRUE(used);
  EXPECT_THAT(runtime.transcript({"clEnqueueNDRangeKernel"}),
              Contains(testing::HasSubstr("k_coarsed_g0S4")));
}

TEST_P(Meanwhile, AnotherThreadUsesAProgramDuringALink) {
  inCall("clLinkProgram", [this] { useProgram(); });
  EXPECT_NE(link(), nullptr);
  EXPECT_TRUE(used);
}

TEST_P(Meanwhile, AKernelOfAProgramThatIsBuiltAgainHasTheVariantsOfBefore) {
  inBuild([this] { useProgram(); });
  EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  EXPECT_THAT(runtime.transcript({"clEnqueueNDRangeKernel"}),
              Contains(testing::HasSubstr("k_coarsed_g0S4")));
  EXPECT_EQ(kernelNames(cl(), program), "k;k");
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

// A kernel that the first build had created would make the runtime refuse the
// second one.
TEST_P(Meanwhile, ASecondBuildOfAProgramCreatesNoKernelsDuringTheFirst) {
  inBuild([this] {
    EXPECT_EQ(build(cl(), program), CL_SUCCESS);
    EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
    used = true;
  });
  EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  EXPECT_TRUE(used);
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), SizeIs(2));
  EXPECT_EQ(kernelNames(cl(), program), "k;k;k") << "of three builds";
}

TEST_P(Meanwhile, ABuildOfAProgramFromItsOwnBuildKnowsItsKernelsAtOnce) {
  const auto again = [](cl_program built, void *userData) {
    auto &self = *static_cast<Meanwhile *>(userData);
    EXPECT_EQ(build(self.cl(), built), CL_SUCCESS);
    EXPECT_EQ(kernelNames(self.cl(), built), "only");
    self.used = true;
  };
  const cl_program fresh = runtime.addProgram().kernel("only");
  EXPECT_EQ(cl().clBuildProgram(fresh, 0, nullptr, nullptr, again, this),
            CL_SUCCESS);
  EXPECT_TRUE(used);
  EXPECT_EQ(kernelNames(cl(), fresh), "only;only");
}

TEST_P(Meanwhile, ARecordThatIsDroppedDuringABuildIsMadeAnew) {
  EXPECT_EQ(cl().clRetainProgram(program), CL_SUCCESS);
  inBuild([this] { EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS); });
  EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl(), program), "k");
}

TEST_P(Meanwhile, AFlushDuringABuildLeavesNothingToRecord) {
  inBuild([this] { agent->unload(); });
  EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
}

TEST_P(Meanwhile, AFlushDuringALinkLeavesNothingToRecord) {
  inCall("clLinkProgram", [this] { agent->unload(); });
  EXPECT_NE(link(), nullptr);
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
}

TEST_P(Meanwhile, ALoadDuringABuildRecordsItsKernels) {
  agent->unload();
  inBuild([this] { EXPECT_EQ(agent->loadAgain(), CL_SUCCESS); });
  EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl(), program), "k");
}

TEST_P(DuringASecondBuild, AnotherThreadUsesAProgram) {
  inBuild([this] { useProgram(); }, 2);
  EXPECT_EQ(build(cl(), runtime.addProgram().log(spillLog)), CL_SUCCESS);
  EXPECT_TRUE(used);
}

TEST_P(DuringASecondBuild, TheVariableStaysHiddenWhenAnotherOneEnds) {
  inBuild(
      [this] {
        EXPECT_EQ(build(cl(), runtime.addProgram().log(spillLog)), CL_SUCCESS);
        EXPECT_EQ(std::getenv("CORVANE_AUTOTUNE"), nullptr);
        used = true;
      },
      2);
  EXPECT_EQ(build(cl(), runtime.addProgram().log(spillLog)), CL_SUCCESS);
  EXPECT_TRUE(used);
  EXPECT_EQ(calls, 4);
  ASSERT_NE(std::getenv("CORVANE_AUTOTUNE"), nullptr);
  EXPECT_EQ(std::getenv("CORVANE_AUTOTUNE"), folder.text());
  EXPECT_EQ(std::getenv("CORVANE_AUTOTUNE_SHADOW"), nullptr);
}

TEST_P(DuringASecondBuild, AnotherThreadsLinkStillFindsItsVariants) {
  cl_program linked = nullptr;
  runtime.linkMakes().kernel("a").kernel("a_coarsed_g0S2");
  inBuild([&] { linked = link(); }, 2);
  EXPECT_EQ(build(cl(), runtime.addProgram().log(spillLog)), CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl(), linked), "a");
}

TEST_P(DuringASecondBuild, AnotherThreadsLoadStillFindsTheResultsFolder) {
  inBuild(
      [this] {
        agent->unload();
        EXPECT_EQ(agent->loadAgain(), CL_SUCCESS);
        used = isAutotuning(runtime, cl());
      },
      2);
  EXPECT_EQ(build(cl(), runtime.addProgram().log(spillLog)), CL_SUCCESS);
  EXPECT_TRUE(used);
}
