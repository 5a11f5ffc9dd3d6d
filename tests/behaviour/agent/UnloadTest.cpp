// Tests of the unload, and of the process's end.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdio>
#include <filesystem>
#include <future>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Not;

static std::string folderOf(const std::string &log) {
  return std::filesystem::path(log).parent_path().string();
}

// Defines the variables until the process has ended.
static void defineOutput(const std::string &log) {
  assignForGood("CORVANE_DUMP_LOG", nullptr);
  assignForGood("CORVANE_AUTOTUNE", folderOf(log).c_str());
  assignForGood("CORVANE_INSTALL_LOCATION", "/opt/corvane");
}

static LoadedAgent loadWithOutput(FakeRuntime &runtime,
                                  const std::string &log) {
  return LoadedAgent(runtime, {{"CORVANE_AUTOTUNE", folderOf(log)},
                               {"CORVANE_INSTALL_LOCATION", "/opt/corvane"}});
}

TEST(Unload, WritesTheResults) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    const LoadedAgent agent = loadWithOutput(runtime, log);
  });
  EXPECT_THAT(ended.files, Contains(Key("autotune.csv")));
}

TEST(Unload, FollowedByTheProcessesEndWritesTheResultsOnce) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    defineOutput(log);
    FakeRuntime runtime;
    { const LoadedAgent agent = loadWithOutput(runtime, log); }
    const std::string table = folderOf(log) + "/autotune.csv";
    EXPECT_TRUE(std::filesystem::remove(table));
  });
  EXPECT_THAT(ended.files, Contains(Key(".auto.csv")));
  EXPECT_THAT(ended.files, Not(Contains(Key("autotune.csv"))));
}

TEST(ProcessEnd, WithoutAnUnloadWritesTheResults) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    defineOutput(log);
    FakeRuntime runtime;
    EnvGuard autotune("CORVANE_AUTOTUNE", folderOf(log));
    EXPECT_EQ(clAgent_OnLoad(runtime.agent().operations()), CL_SUCCESS);
    EXPECT_FALSE(std::filesystem::exists(folderOf(log) + "/autotune.csv"));
  });
  EXPECT_THAT(ended.files, Contains(Key("autotune.csv")));
}

// A thread inside a hook holds the lock, and never leaves the hook.
TEST(ProcessEnd, WaitsForNoThreadInsideAHook) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    // Never destroyed: the thread uses all this until the process is gone.
    auto &runtime = *new FakeRuntime;
    auto &isInside = *new std::promise<void>;
    auto &forever = *new std::promise<void>;
    defineOutput(log);
    EXPECT_EQ(clAgent_OnLoad(runtime.agent().operations()), CL_SUCCESS);
    const cl_program program = runtime.addProgram();
    runtime.whenCalled("clBuildProgram", [&] {
      isInside.set_value();
      forever.get_future().wait();
    });
    std::thread([&runtime, program] {
      build(runtime.agent().current, program);
    }).detach();
    isInside.get_future().wait();
  });
  EXPECT_THAT(ended.files, Contains(Key("autotune.csv")));
  EXPECT_THAT(ended.files, Contains(Key("main.html")));
}

TEST(Unload, MayComeTwiceOrWithoutALoad) {
  FakeRuntime runtime;
  clAgent_OnUnload(runtime.agent().operations());
  LoadedAgent agent(runtime);
  agent.unload();
  agent.unload();
  EXPECT_THAT(runtime.misuses(), IsEmpty());
}

TEST(Unload, LeavesTheTableAsItIs) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  runtime.forgetTranscript();
  agent.unload();
  EXPECT_THAT(runtime.transcript(), IsEmpty());
}

TEST(Unload, MakesEveryHookPassStraightToTheRuntime) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
  LoadedAgent agent(runtime);
  const DispatchTable &cl = agent.table();
  build(cl, program);
  cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
  agent.unload();
  runtime.forgetTranscript();

  build(cl, program);
  cl_kernel kernels[2] = {};
  EXPECT_EQ(cl.clCreateKernelsInProgram(program, 2, kernels, nullptr),
            CL_SUCCESS);
  const std::size_t global = 8;
  cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr, &global,
                            nullptr, 0, nullptr, nullptr);
  EXPECT_EQ(kernelCount(cl, program), 2U);
  runtime.answer("clReleaseProgram", CL_MAP_FAILURE);
  EXPECT_EQ(cl.clReleaseProgram(program), CL_MAP_FAILURE);

  EXPECT_THAT(
      runtime.transcript(),
      ElementsAre("clBuildProgram(program 1, [], null, null, null)",
                  "clCreateKernelsInProgram(program 1, 2, &, null)",
                  "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, [8], "
                  "null, [], null)",
                  "clGetProgramInfo(program 1, CL_PROGRAM_NUM_KERNELS, 8, &, "
                  "null)",
                  "clReleaseProgram(program 1)"));
}
