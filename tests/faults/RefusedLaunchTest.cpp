// Tests of autotuning launches that are refused memory at every request.

#include "tests/faults/RefusedCalls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
class RefusedLaunch : public RefusedCalls {
protected:
  ~RefusedLaunch() override {
    runtime.runAll();
    cl().clReleaseKernel(kernel);
    for (cl_mem buffer : buffers)
      cl().clReleaseMemObject(buffer);
  }

  void create(const char *name, cl_uint argumentCount) {
    kernel = cl().clCreateKernel(program, name, nullptr);
    for (cl_uint index = 0; index != argumentCount; ++index) {
      buffers.push_back(createBuffer(runtime, cl()));
      cl().clSetKernelArg(kernel, index, sizeof(cl_mem), &buffers.back());
    }
  }

  cl_int launch() {
    const std::size_t global = 64;
    return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                       &global, nullptr, 0, nullptr, nullptr);
  }

  // Behind an exception nothing has been enqueued.
  void refuseEachLaunch() {
    refuseEach(
        [this] {
          runtime.forgetTranscript();
          try {
            return launch();
          } catch (const std::bad_alloc &) {
            EXPECT_THAT(runtime.transcript({"clEnqueueReadBuffer",
                                            "clEnqueueWriteBuffer",
                                            "clEnqueueNDRangeKernel"}),
                        IsEmpty());
            throw;
          }
        },
        [] {});
  }

  cl_kernel kernel = nullptr;
  std::vector<cl_mem> buffers;
};
} // namespace

TEST_F(RefusedLaunch, OfVariantsIsWholeOrNotAtAll) {
  create("k", 3);
  runtime.late();
  refuseEachLaunch();
  EXPECT_EQ(runtime.transcript({"clEnqueueNDRangeKernel"}).size(), 3U);
}

TEST_F(RefusedLaunch, OfAKernelAloneIsWholeOrNotAtAll) {
  create("j", 1);
  runtime.late();
  refuseEachLaunch();
  EXPECT_EQ(runtime.transcript({"clEnqueueNDRangeKernel"}).size(), 1U);
}

// There is no event to tell when the transfers are over, so their memory stays;
// but that needs none.
TEST_F(RefusedLaunch, ThatCannotBeWatchedKeepsItsTransfersAlive) {
  create("k", 3);
  runtime.late();
  for (int i = 0; i != 3; ++i) {
    runtime.whenCalled("clSetEventCallback",
                       [] { AgentMemory::refuseFrom(1); });
    runtime.answer("clSetEventCallback", CL_OUT_OF_HOST_MEMORY);
    EXPECT_EQ(launch(), CL_SUCCESS);
    EXPECT_FALSE(AgentMemory::refuseNothing());
  }
  for (cl_mem buffer : buffers)
    cl().clReleaseMemObject(buffer);
  buffers.clear();
  frontier.unload();
  runtime.runAll();
}
