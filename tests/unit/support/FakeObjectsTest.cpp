// Tests of the scripted runtime's objects: counts, names and misuse.

#include "tests/support/FakeRuntime.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(FakeObjects, LiveUntilTheLastReferenceGoes) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  cl_mem buffer = runtime.addBuffer(4);
  cl.clRetainMemObject(buffer);

  cl.clReleaseMemObject(buffer);
  EXPECT_THAT(runtime.alive("buffer"), ElementsAre("buffer 1"));
  cl.clReleaseMemObject(buffer);
  EXPECT_THAT(runtime.alive("buffer"), IsEmpty());
  EXPECT_THAT(runtime.misuses(), IsEmpty());
}

TEST(FakeObjects, AreMisusedByOneReleaseTooMany) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  cl_event event = runtime.addEvent();
  cl.clReleaseEvent(event);

  EXPECT_EQ(cl.clReleaseEvent(event), CL_INVALID_EVENT);
  EXPECT_THAT(runtime.misuses(), ElementsAre("event 1 used after its end"));
}

TEST(FakeObjects, DoNotIncludeNonsense) {
  FakeRuntime runtime;
  int somewhere = 0;
  auto *nonsense = reinterpret_cast<cl_kernel>(&somewhere);

  EXPECT_EQ(runtime.ownTable().clReleaseKernel(nonsense), CL_INVALID_KERNEL);
  EXPECT_THAT(runtime.transcript(), ElementsAre("clReleaseKernel(kernel ?)"));
}

TEST(FakeObjects, GiveTheirNamesFreeWhenTheyAreKernels) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  const cl_program program = runtime.addProgram().kernel("k").alreadyBuilt();
  cl_kernel first = cl.clCreateKernel(program, "k", nullptr);
  cl.clCreateKernel(program, "k", nullptr);
  EXPECT_THAT(runtime.alive("kernel"), ElementsAre("kernel k", "kernel k 2"));

  cl.clReleaseKernel(first);
  cl.clCreateKernel(program, "k", nullptr);
  EXPECT_THAT(runtime.alive("kernel"), ElementsAre("kernel k 2", "kernel k"));
}

TEST(FakeObjects, CanGetTheHandlesOfThoseThatAreGone) {
  FakeRuntime runtime;
  runtime.recycleHandles();
  cl_mem first = runtime.addBuffer(4);
  runtime.ownTable().clReleaseMemObject(first);
  EXPECT_EQ(runtime.addBuffer(8), first);
  EXPECT_EQ(runtime.bytes(first).size(), 8U);
}

TEST(FakeObjects, CallTheDestructorsOfABufferWhenNoCommandNeedsIt) {
  FakeRuntime runtime;
  const DispatchTable &cl = runtime.ownTable();
  cl_mem buffer = runtime.addBuffer(1);
  bool destroyed = false;
  cl.clSetMemObjectDestructorCallback(
      buffer, [](cl_mem, void *data) { *static_cast<bool *>(data) = true; },
      &destroyed);
  unsigned char host = 0;
  runtime.late();
  cl.clEnqueueReadBuffer(runtime.queue(), buffer, CL_FALSE, 0, 1, &host, 0,
                         nullptr, nullptr);

  cl.clReleaseMemObject(buffer);
  EXPECT_FALSE(destroyed);
  runtime.runAll();
  EXPECT_TRUE(destroyed);
}
