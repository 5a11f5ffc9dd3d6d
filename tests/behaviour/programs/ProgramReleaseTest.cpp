// Tests of when the agent forgets a program: by its own count, not by the
// runtime's.

#include "tests/behaviour/Calls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
class ProgramRelease : public testing::Test {
protected:
  // The runtime's own answer, which the agent passes on for an unknown program.
  static constexpr const char *unknown = "k;k_coarsed_g0S4";

  ProgramRelease() {
    program = runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
    for (int reference = 0; reference != 5; ++reference)
      runtime.ownTable().clRetainProgram(program);
  }

  FakeRuntime runtime;
  LoadedAgent agent{runtime};
  const DispatchTable &cl = agent.table();
  cl_program program = nullptr;
};
} // namespace

TEST_F(ProgramRelease, ForgetsAProgramThatWasBuiltOnce) {
  build(cl, program);
  EXPECT_EQ(kernelNames(cl, program), "k");
  EXPECT_EQ(cl.clReleaseProgram(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl, program), unknown);
}

TEST_F(ProgramRelease, ForgetsAProgramWithTheLastOfItsBuilds) {
  build(cl, program);
  build(cl, program);
  cl.clReleaseProgram(program);
  EXPECT_EQ(kernelNames(cl, program), "k;k");
  cl.clReleaseProgram(program);
  EXPECT_EQ(kernelNames(cl, program), unknown);
}

TEST_F(ProgramRelease, CountsABuildWhoseKernelsCannotBeCreated) {
  build(cl, program);
  runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES, 1);
  build(cl, program);
  cl.clReleaseProgram(program);
  EXPECT_EQ(kernelNames(cl, program), "k");
  cl.clReleaseProgram(program);
  EXPECT_EQ(kernelNames(cl, program), unknown);
}

TEST_F(ProgramRelease, KnowsAProgramWithoutKernelsToo) {
  runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES, 1);
  build(cl, program);
  EXPECT_EQ(kernelNames(cl, program), "");
  EXPECT_EQ(kernelCount(cl, program), 0U);
}

TEST_F(ProgramRelease, ForgetsAlsoWhenTheRuntimeFails) {
  build(cl, program);
  runtime.answer("clReleaseProgram", CL_MAP_FAILURE);
  EXPECT_EQ(cl.clReleaseProgram(program), CL_MAP_FAILURE);
  EXPECT_EQ(kernelNames(cl, program), unknown);
}

TEST_F(ProgramRelease, OfAnUnknownProgramIsLeftToTheRuntime) {
  runtime.forgetTranscript();
  EXPECT_EQ(cl.clReleaseProgram(program), CL_SUCCESS);
  EXPECT_EQ(cl.clReleaseProgram(nullptr), CL_INVALID_PROGRAM);
  EXPECT_THAT(runtime.transcript(), ElementsAre("clReleaseProgram(program 1)",
                                                "clReleaseProgram(null)"));
}

TEST_F(ProgramRelease, LetsANewProgramHaveTheSameHandle) {
  build(cl, program);
  for (int reference = 0; reference != 6; ++reference)
    cl.clReleaseProgram(program);
  runtime.recycleHandles();
  const cl_program again = runtime.addProgram().kernel("new");
  ASSERT_EQ(again, program);
  build(cl, again);
  EXPECT_EQ(kernelNames(cl, again), "new");
}
