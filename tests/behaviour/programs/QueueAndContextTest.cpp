// Tests of the hooks on command queues and contexts.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

static std::vector<std::string>
queueCreatedWith(cl_command_queue_properties properties) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  cl_int status = -1;
  EXPECT_NE(agent.table().clCreateCommandQueue(
                runtime.context(), runtime.device(), properties, &status),
            nullptr);
  EXPECT_EQ(status, CL_SUCCESS);
  return runtime.transcript({"clCreateCommandQueue"});
}

TEST(CreateCommandQueue, AddsProfilingToNoProperties) {
  EXPECT_THAT(queueCreatedWith(0),
              ElementsAre("clCreateCommandQueue(context 1, device 1, 2, &)"));
}

TEST(CreateCommandQueue, KeepsOtherPropertiesAndProfiling) {
  EXPECT_THAT(queueCreatedWith(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE),
              ElementsAre("clCreateCommandQueue(context 1, device 1, 3, &)"));
  EXPECT_THAT(queueCreatedWith(CL_QUEUE_PROFILING_ENABLE),
              ElementsAre("clCreateCommandQueue(context 1, device 1, 2, &)"));
}

TEST(CreateCommandQueue, AddsProfilingAlsoAfterTheUnload) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  agent.unload();
  agent.table().clCreateCommandQueue(runtime.context(), runtime.device(), 0,
                                     nullptr);
  EXPECT_THAT(
      runtime.transcript({"clCreateCommandQueue"}),
      ElementsAre("clCreateCommandQueue(context 1, device 1, 2, null)"));
}

namespace {
class ReleaseContext : public testing::Test {
protected:
  // Releases a context and tells whether that has flushed the results.
  bool flushesWith(const char *value) {
    EnvGuard flush("CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", value);
    EXPECT_EQ(agent.table().clReleaseContext(runtime.context()), CL_SUCCESS);
    return folder.has("autotune.csv");
  }

  FakeRuntime runtime;
  TempFolder folder;
  LoadedAgent agent{runtime,
                    {{"CORVANE_AUTOTUNE", folder.text()},
                     {"CORVANE_INSTALL_LOCATION", "/opt/corvane"}}};
};
} // namespace

TEST_F(ReleaseContext, FlushesNothingUnlessAskedTo) {
  EXPECT_FALSE(flushesWith(nullptr));
}

TEST_F(ReleaseContext, FlushesNothingWhenTheVariableIsEmpty) {
  EXPECT_FALSE(flushesWith(""));
}

TEST_F(ReleaseContext, FlushesWhenTheVariableIsZero) {
  EXPECT_TRUE(flushesWith("0"));
}

TEST_F(ReleaseContext, FlushesBeforeTheContextGoes) {
  bool flushedBefore = false;
  runtime.whenCalled("clReleaseContext",
                     [&] { flushedBefore = folder.has("autotune.csv"); });
  flushesWith("1");
  EXPECT_TRUE(flushedBefore);
}

TEST_F(ReleaseContext, EndsAllTracking) {
  const cl_program program =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
  build(agent.table(), program);
  runtime.ownTable().clRetainContext(runtime.context());
  flushesWith("1");
  EXPECT_EQ(kernelNames(agent.table(), program), "k;k_coarsed_g0S4");
  EXPECT_FALSE(isAutotuning(runtime, agent.table()));
}

TEST_F(ReleaseContext, FlushesOnlyOnce) {
  runtime.ownTable().clRetainContext(runtime.context());
  flushesWith("1");
  std::filesystem::remove(folder.path() / "autotune.csv");
  EXPECT_FALSE(flushesWith("1"));
}

TEST_F(ReleaseContext, ReturnsTheRuntimesStatus) {
  runtime.answer("clReleaseContext", CL_MAP_FAILURE);
  EnvGuard flush("CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1");
  EXPECT_EQ(agent.table().clReleaseContext(runtime.context()), CL_MAP_FAILURE);
  EXPECT_TRUE(folder.has("autotune.csv"));
}
