// Tests of the hook on buffers, and of their end.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdint>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

static const std::vector<std::string> transferCalls = {"clEnqueueReadBuffer",
                                                       "clEnqueueWriteBuffer"};

namespace {
class Buffers : public testing::Test {
protected:
  // Launches a kernel on the buffer and returns the transfers around its
  // variant: those of a buffer that has a record.
  std::vector<std::string> transfersFor(cl_mem buffer) {
    const cl_program program =
        runtime.addProgram().kernel("k", 1).kernel("k_coarsed_g0S4", 1);
    build(cl, program);
    cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
    cl.clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
    const std::size_t global = 16;
    const std::size_t local = 4;
    runtime.forgetTranscript();
    EXPECT_EQ(cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                        &global, &local, 0, nullptr, nullptr),
              CL_SUCCESS);
    return runtime.transcript(transferCalls);
  }

  FakeRuntime runtime;
  TempFolder folder;
  LoadedAgent agent{runtime, {{"CORVANE_AUTOTUNE", folder.text()}}};
  const DispatchTable &cl = agent.table();
};
} // namespace

TEST_F(Buffers, AreRecordedWithTheirSizeAndWatched) {
  cl_mem buffer = createBuffer(runtime, cl, 24);
  EXPECT_THAT(runtime.transcript({"clSetMemObjectDestructorCallback"}),
              ElementsAre("clSetMemObjectDestructorCallback(buffer 1, &, &)"));
  EXPECT_THAT(transfersFor(buffer), SizeIs(2));
}

TEST_F(Buffers, GiveTheApplicationTheRuntimesStatus) {
  cl_int status = -1;
  EXPECT_NE(cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 8, nullptr,
                              &status),
            nullptr);
  EXPECT_EQ(status, CL_SUCCESS);
}

TEST_F(Buffers, ThatCannotBeCreatedHaveNoRecordAndNoCallback) {
  runtime.answer("clCreateBuffer", CL_MEM_OBJECT_ALLOCATION_FAILURE, 1);
  cl_int status = 0;
  EXPECT_EQ(cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 8, nullptr,
                              &status),
            nullptr);
  EXPECT_EQ(status, CL_MEM_OBJECT_ALLOCATION_FAILURE);
  EXPECT_THAT(runtime.transcript({"clSetMemObjectDestructorCallback"}),
              IsEmpty());
  // If the failed creation had left a record, it would be that of the null
  // handle.
  EXPECT_THAT(transfersFor(nullptr), IsEmpty());

  runtime.answer("clCreateBuffer", CL_MEM_OBJECT_ALLOCATION_FAILURE, 1);
  EXPECT_EQ(createBuffer(runtime, cl), nullptr);
  EXPECT_THAT(runtime.transcript({"clSetMemObjectDestructorCallback"}),
              IsEmpty());
}

TEST_F(Buffers, KeepTheirRecordWhenTheyCannotBeWatched) {
  runtime.answer("clSetMemObjectDestructorCallback", CL_OUT_OF_HOST_MEMORY);
  EXPECT_THAT(transfersFor(createBuffer(runtime, cl)), SizeIs(2));
}

TEST_F(Buffers, MayBeTooLargeForACopyOnTheHost) {
  cl_mem buffer = createBuffer(runtime, cl, SIZE_MAX / 4);
  ASSERT_NE(buffer, nullptr);
  EXPECT_THAT(transfersFor(buffer), IsEmpty());
  EXPECT_EQ(cl.clReleaseMemObject(buffer), CL_SUCCESS);
}

TEST_F(Buffers, AreForgottenWhenTheRuntimeDestroysThem) {
  cl_mem buffer = createBuffer(runtime, cl, 8);
  cl.clReleaseMemObject(buffer);
  runtime.recycleHandles();
  cl_mem again = runtime.addBuffer(16);
  ASSERT_EQ(again, buffer);
  EXPECT_THAT(transfersFor(again), IsEmpty());
}

TEST_F(Buffers, AreForgottenOnWhateverThreadTheRuntimeUses) {
  cl_mem buffer = createBuffer(runtime, cl, 8);
  runtime.holdCallbacks();
  cl.clReleaseMemObject(buffer);
  std::thread([&] { EXPECT_EQ(runtime.fireCallbacks(), 1U); }).join();
  runtime.holdCallbacks(false);
  runtime.recycleHandles();
  ASSERT_EQ(runtime.addBuffer(16), buffer);
  EXPECT_THAT(transfersFor(buffer), IsEmpty());
}

TEST_F(Buffers, MayBeDestroyedWhileAnotherThreadIsInsideAHook) {
  cl_mem buffer = createBuffer(runtime, cl, 8);
  runtime.whenCalled("clReleaseProgram", [&] {
    std::thread([&] { cl.clReleaseMemObject(buffer); }).join();
  });
  EXPECT_EQ(cl.clReleaseProgram(runtime.addProgram()), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("buffer"), IsEmpty());
}

TEST_F(Buffers, MayBeDestroyedAfterTheUnload) {
  cl_mem buffer = createBuffer(runtime, cl, 8);
  agent.unload();
  EXPECT_EQ(cl.clReleaseMemObject(buffer), CL_SUCCESS);
}

TEST_F(Buffers, OfOneHandleAreForgottenOldestFirst) {
  cl_mem buffer = createBuffer(runtime, cl, 8);
  runtime.holdCallbacks();
  cl.clReleaseMemObject(buffer);
  runtime.recycleHandles();
  cl_mem again = createBuffer(runtime, cl, 16);
  ASSERT_EQ(again, buffer);
  EXPECT_EQ(runtime.fireCallbacks(), 1U);
  runtime.holdCallbacks(false);

  EXPECT_THAT(
      transfersFor(again),
      ElementsAre("clEnqueueReadBuffer(queue 1, buffer 2, non-blocking, 0, 16, "
                  "&, [], event 1)",
                  "clEnqueueWriteBuffer(queue 1, buffer 2, non-blocking, 0, "
                  "16, &, [event 2], event 3)"));
}

TEST(BuffersWithoutAutotuning, AreNeitherRecordedNorWatched) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  runtime.forgetTranscript();
  cl_mem buffer = createBuffer(runtime, agent.table(), 8);
  EXPECT_NE(buffer, nullptr);
  agent.table().clReleaseMemObject(buffer);
  EXPECT_THAT(runtime.transcript(),
              ElementsAre("clCreateBuffer(context 1, 1, 8, null, &)",
                          "clReleaseMemObject(buffer 1)"));
}
