// Tests of the build: what is collected, and what the runtime is asked.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST(Build, AsksForLogsAndKernelsAndReleasesTheKernels) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("k").log("fine");
  LoadedAgent agent(runtime);
  runtime.forgetTranscript();
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);

  EXPECT_THAT(
      runtime.transcript(),
      ElementsAre(
          "clBuildProgram(program 1, [], null, null, null)",
          "clGetProgramInfo(program 1, CL_PROGRAM_NUM_DEVICES, 8, &, null)",
          HasSubstr("clGetProgramInfo(program 1, CL_PROGRAM_DEVICES, 8, &"),
          "clGetProgramBuildInfo(program 1, device 1, CL_PROGRAM_BUILD_LOG, "
          "0, null, &)",
          HasSubstr("clGetProgramBuildInfo(program 1, device 1, "
                    "CL_PROGRAM_BUILD_LOG, 5, &"),
          "clCreateKernelsInProgram(program 1, 4096, &, &)",
          "clGetKernelInfo(kernel k, CL_KERNEL_FUNCTION_NAME, 1024, &, null)",
          "clReleaseKernel(kernel k)"));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST(Build, TakesTheApplicationsDevicesWhenItNamesThem) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().devices(3).log("fine", 1).log("fine", 3);
  LoadedAgent agent(runtime);
  const cl_device_id devices[] = {runtime.device(3), runtime.device(1)};
  agent.table().clBuildProgram(program, 2, devices, nullptr, nullptr, nullptr);

  EXPECT_THAT(runtime.transcript({"clGetProgramInfo"}), IsEmpty());
  EXPECT_THAT(
      runtime.transcript({"clGetProgramBuildInfo"}),
      ElementsAre(HasSubstr("program 1, device 3,"), HasSubstr("device 3,"),
                  HasSubstr("program 1, device 1,"), HasSubstr("device 1,")));
}

TEST(Build, CollectsAlsoWhenItFails) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram()
                                 .kernel("k")
                                 .kernel("k_coarsed_g0S4")
                                 .buildStatus(CL_BUILD_PROGRAM_FAILURE);
  LoadedAgent agent(runtime);
  EXPECT_EQ(build(agent.table(), program), CL_BUILD_PROGRAM_FAILURE);
  EXPECT_EQ(kernelNames(agent.table(), program), "k");
}

TEST(Build, OfNoProgramCollectsNothing) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  EXPECT_EQ(build(agent.table(), nullptr), CL_INVALID_PROGRAM);
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
}

TEST(Build, ForTheSecondTimeAppendsAllGroupsOnceMore) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("a").kernel("b");
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  build(agent.table(), program);
  EXPECT_EQ(kernelNames(agent.table(), program), "a;b;a;b");
  EXPECT_EQ(kernelCount(agent.table(), program), 4U);
}

TEST(Build, WithAVariantBeforeItsKernelHasTwoGroupsOfThatName) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("k_coarsed_g0S4").kernel("k");
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  EXPECT_EQ(kernelNames(agent.table(), program), "k;k");
  EXPECT_EQ(kernelCount(agent.table(), program), 2U);
}

TEST(Build, WithAVariantAndNoKernelStillHasItsGroup) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("k_coarsed_g0S4").kernel("k_coarsed_g0S8");
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  EXPECT_EQ(kernelNames(agent.table(), program), "k");
}

static ProgramScript addLargeProgram(FakeRuntime &runtime, int kernels) {
  ProgramScript program = runtime.addProgram();
  for (int i = 0; i != kernels; ++i)
    program.kernel("k" + std::to_string(i));
  return program;
}

TEST(Build, WithMoreThan4096KernelsReportsAndKnowsAll) {
  FakeRuntime runtime;
  const cl_program program =
      addLargeProgram(runtime, 4100).kernel("k7_coarsed_g0S4");
  LoadedAgent agent(runtime);
  ErrorCapture errors;
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 259: CL Error: CL_INVALID_VALUE\n");
  EXPECT_EQ(kernelCount(agent.table(), program), 4100U);
  EXPECT_THAT(kernelNames(agent.table(), program), EndsWith(";k4099"));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());

  cl_kernel kernel = agent.table().clCreateKernel(program, "k7", nullptr);
  EXPECT_THAT(runtime.alive("kernel"),
              UnorderedElementsAre("kernel k7", "kernel k7_coarsed_g0S4"));
  EXPECT_EQ(agent.table().clReleaseKernel(kernel), CL_SUCCESS);
}

TEST(Build, WithMoreThan4096KernelsReportsWhenTheyCannotBeCreated) {
  FakeRuntime runtime;
  const cl_program program = addLargeProgram(runtime, 4097);
  LoadedAgent agent(runtime);
  runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES, 3);
  ErrorCapture errors;
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 259: CL Error: CL_INVALID_VALUE\n"
                           "QrlAgent:: 259: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_EQ(kernelCount(agent.table(), program), 0U);
}

static cl_int CL_API_CALL claimBillionsOfKernels(cl_program, cl_uint size,
                                                 cl_kernel *kernels,
                                                 cl_uint *count) {
  if (kernels)
    return CL_INVALID_VALUE;
  EXPECT_EQ(size, 0U);
  *count = 0xFFFFFFFF;
  return CL_SUCCESS;
}

TEST(Build, GetsNoMemoryForBillionsOfKernels) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("k");
  runtime.ownTable().clCreateKernelsInProgram = claimBillionsOfKernels;
  LoadedAgent agent(runtime);
  ErrorCapture errors;
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(kernelCount(agent.table(), program), 0U);
}

TEST(Build, With4096KernelsKnowsAll) {
  FakeRuntime runtime;
  const cl_program program = addLargeProgram(runtime, 4096);
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  EXPECT_EQ(kernelCount(agent.table(), program), 4096U);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST(Build, SurvivesARuntimeThatClaimsMoreKernelsThanItWasAskedFor) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("k");
  LoadedAgent agent(runtime);
  for (const cl_uint claimed : {4097U, 0xFFFFFFFFU, 5U}) {
    runtime.lies().kernelCount = claimed;
    EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  }
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST(Build, LeavesAKernelWithAVeryLongNameToTheApplication) {
  FakeRuntime runtime;
  const std::string longName(2000, 'x');
  const std::string name = longName + "_coarsed_g0S4";
  const cl_program program = runtime.addProgram().kernel("k").kernel(name);
  LoadedAgent agent(runtime);
  const DispatchTable &cl = agent.table();
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(kernelCount(cl, program), 2U);
  EXPECT_EQ(kernelNames(cl, program), "k;" + name);

  cl_kernel kernel = cl.clCreateKernel(program, name.c_str(), nullptr);
  EXPECT_NE(kernel, nullptr);
  EXPECT_THAT(runtime.alive("kernel"), SizeIs(1));
}

TEST(Build, KnowsAVariantUpToALengthOf1023) {
  FakeRuntime runtime;
  const std::string spec = "_coarsed_g0S4";
  const std::string base(1023 - spec.size(), 'x');
  const cl_program program =
      runtime.addProgram().kernel(base).kernel(base + spec);
  LoadedAgent agent(runtime);
  build(agent.table(), program);
  EXPECT_EQ(kernelNames(agent.table(), program), base);
}

TEST(Build, DoesNotMindAKernelWhoseNameCannotBeRead) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("a").kernel("b");
  runtime.answer("clGetKernelInfo", CL_OUT_OF_RESOURCES);
  LoadedAgent agent(runtime);
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(kernelCount(agent.table(), program), 2U);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}
