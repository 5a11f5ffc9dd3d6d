// Tests of how the scripted runtime is told what to do: failures, programs,
// transcript.

#include "tests/support/FakeRuntime.h"
#include "tests/support/FakeTable.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <set>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

TEST(FakeRuntime, TellsItsCallsInWords) {
  FakeRuntime runtime;
  const cl_program program = runtime.addProgram().kernel("blur", 1);
  const DispatchTable &cl = runtime.ownTable();
  cl.clBuildProgram(program, 0, nullptr, "-g", nullptr, nullptr);
  cl_kernel kernel = cl.clCreateKernel(program, "blur", nullptr);
  const cl_int five = 5;
  cl.clSetKernelArg(kernel, 0, sizeof five, &five);

  EXPECT_THAT(runtime.transcript(),
              ElementsAre("clBuildProgram(program 1, [], \"-g\", null, null)",
                          "clCreateKernel(program 1, \"blur\", null)",
                          "clSetKernelArg(kernel blur, 0, 4, 05 00 00 00)"));
  EXPECT_THAT(runtime.transcript({"clCreateKernel"}),
              ElementsAre("clCreateKernel(program 1, \"blur\", null)"));
}

TEST(FakeRuntime, FailsOnlyTheCallThatTheTestNames) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  cl.clFlush(runtime.queue());
  runtime.answer("clFlush", CL_MAP_FAILURE, 2);

  EXPECT_EQ(cl.clFlush(runtime.queue()), CL_SUCCESS);
  EXPECT_EQ(cl.clFlush(runtime.queue()), CL_MAP_FAILURE);
  EXPECT_EQ(cl.clFlush(runtime.queue()), CL_SUCCESS);
}

TEST(FakeRuntime, FailsTheNthCallWhicheverItIs) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  runtime.answerAny(2, CL_OUT_OF_RESOURCES);

  EXPECT_EQ(cl.clFlush(runtime.queue()), CL_SUCCESS);
  EXPECT_EQ(cl.clRetainContext(runtime.context()), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(cl.clFlush(runtime.queue()), CL_SUCCESS);
  EXPECT_EQ(runtime.callCount(), 3U);
}

TEST(FakeRuntime, AnswersForEachBuildWhatWasSaidForIt) {
  FakeRuntime runtime;
  const cl_program program =
      runtime.addProgram().kernel("a").thenBuilt().kernel("b").kernel("c");
  const DispatchTable &cl = runtime.ownTable();
  cl_uint count = 0;
  const auto build = [&] {
    cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
    cl.clCreateKernelsInProgram(program, 0, nullptr, &count);
  };

  EXPECT_EQ(cl.clCreateKernelsInProgram(program, 0, nullptr, &count),
            CL_INVALID_PROGRAM_EXECUTABLE);
  build();
  EXPECT_EQ(count, 1U);
  build();
  EXPECT_EQ(count, 2U);
  build();
  EXPECT_EQ(count, 2U);
}

TEST(FakeRuntime, StopsTheTestAtAnEntryThatWasNotScripted) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  FakeRuntime runtime;
  EXPECT_DEATH(runtime.ownTable().clEnqueueBarrier(nullptr),
               "clEnqueueBarrier was called, but no answer was scripted");
}

TEST(FakeRuntime, HasADifferentValueInEveryEntry) {
  const auto entries = entriesOf(makeFakeTable());
  EXPECT_EQ(std::set<const void *>(entries.begin(), entries.end()).size(),
            entryCount);
}
