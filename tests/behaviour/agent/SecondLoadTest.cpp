// Tests of a second load, with or without an unload in between.

#include "tests/behaviour/Calls.h"
#include "tests/support/FakeTable.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::Contains;

// Calls each of the thirteen hooks once. A hook that called itself would not
// return.
static void callEveryHook(FakeRuntime &runtime, const DispatchTable &cl) {
  const cl_program program = runtime.addProgram().kernel("k", 1);
  cl.clCreateProgramWithSource(runtime.context(), 0, nullptr, nullptr, nullptr);
  build(cl, program);
  kernelCount(cl, program);
  cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
  cl_kernel another = nullptr;
  cl.clCreateKernelsInProgram(program, 1, &another, nullptr);
  const cl_int value = 1;
  cl.clSetKernelArg(kernel, 0, sizeof value, &value);
  const std::size_t global = 1;
  cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr, &global,
                            nullptr, 0, nullptr, nullptr);
  cl.clReleaseKernel(kernel);
  cl.clReleaseProgram(program);
  cl.clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0, nullptr, nullptr,
                   nullptr, nullptr);
  createBuffer(runtime, cl);
  cl.clCreateCommandQueue(runtime.context(), runtime.device(), 0, nullptr);
  cl.clReleaseContext(runtime.context());
}

static std::vector<std::string> callsOf(bool loadTwice) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  if (loadTwice) {
    EXPECT_EQ(agent.loadAgain(), CL_SUCCESS);
  }
  runtime.forgetTranscript();
  callEveryHook(runtime, agent.table());
  return runtime.transcript();
}

TEST(SecondLoad, NeverMakesAHookCallItself) {
  EXPECT_EQ(callsOf(/*loadTwice=*/true), callsOf(/*loadTwice=*/false));
}

TEST(SecondLoad, SetsTheSameTableAgain) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  agent.loadAgain();
  ASSERT_EQ(runtime.agent().tablesSet.size(), 2U);
  EXPECT_EQ(entriesOf(runtime.agent().tablesSet[0]),
            entriesOf(runtime.agent().tablesSet[1]));
}

TEST(SecondLoad, KeepsWhatIsKnown) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  agent.loadAgain();
  EXPECT_EQ(kernelNames(agent.table(), program), "k");
}

// Another layer may have put its own entry over one of the hooks meanwhile.
static cl_int CL_API_CALL otherFlush(cl_command_queue) { return -77; }
static cl_int CL_API_CALL otherReleaseKernel(cl_kernel) { return -78; }

TEST(SecondLoad, TakesEntriesThatAreNewInTheTable) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  runtime.agent().current.clFlush = otherFlush;
  runtime.agent().current.clReleaseKernel = otherReleaseKernel;
  agent.loadAgain();

  EXPECT_EQ(agent.table().clFlush(nullptr), -77);
  EXPECT_NE(agent.table().clReleaseKernel, &otherReleaseKernel);
  EXPECT_EQ(agent.table().clReleaseKernel(nullptr), -78);
}

TEST(SecondLoad, AfterAnUnloadTracksAnew) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  agent.unload();
  EXPECT_EQ(kernelNames(agent.table(), program), "k;k_coarsed_g0S4");

  agent.loadAgain();
  build(agent.table(), program);
  EXPECT_EQ(kernelNames(agent.table(), program), "k");
}

TEST(SecondLoad, OfAnotherRuntimeForgetsTheFirst) {
  {
    FakeRuntime first;
    LoadedAgent agent(first);
  }
  FakeRuntime second;
  LoadedAgent agent(second);
  agent.table().clReleaseContext(second.context());
  EXPECT_THAT(second.transcript(), Contains("clReleaseContext(context 1)"));
}
