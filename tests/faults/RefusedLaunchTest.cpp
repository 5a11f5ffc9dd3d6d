// Tests of autotuning launches that are refused memory at every request.

#include "tests/faults/RefusedCalls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <filesystem>

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

  // Launches with each request refused in turn. After an exception nothing has
  // been enqueued. The memory for a buffer's contents is kept for the next
  // launch.
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
        [] {}, buffers.size());
  }

  std::size_t linesOfLog() const {
    const std::string log = folder.read(".auto.csv");
    return static_cast<std::size_t>(std::count(log.begin(), log.end(), '\n'));
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

TEST_F(RefusedLaunch, WithoutMemoryForABufferRunsItsVariantsTheNextTime) {
  create("k", 3);
  const auto runs = [this](std::size_t refusedRequest) {
    runtime.forgetTranscript();
    AgentMemory::refuse(refusedRequest);
    try {
      launch();
    } catch (const std::bad_alloc &) {
    }
    return runtime.transcript({"clEnqueueNDRangeKernel"}).size();
  };
  std::size_t request = 1;
  while (runs(request) == 0)
    ++request;
  EXPECT_TRUE(AgentMemory::refuseNothing());
  EXPECT_EQ(runtime.transcript({"clEnqueueNDRangeKernel"}).size(), 1U);
  EXPECT_EQ(launch(), CL_SUCCESS);
  EXPECT_EQ(runtime.transcript({"clEnqueueNDRangeKernel"}).size(), 4U);
}

// A buffer gets memory for a copy only when a launch with variants uses it;
// most buffers never need it.
TEST_F(RefusedLaunch, IsTheFirstToNeedMemoryForTheContentsOfABuffer) {
  constexpr std::size_t size = std::size_t{1} << 20;
  const std::size_t before = AgentMemory::liveBytes();
  cl_mem buffer = createBuffer(runtime, cl(), size);
  const auto use = [&](const char *name) {
    create(name, 1);
    cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
    if (name == std::string("k"))
      for (cl_uint index = 1; index != 3; ++index)
        cl().clSetKernelArg(kernel, index, sizeof buffer, &buffer);
    EXPECT_EQ(launch(), CL_SUCCESS);
  };
  use("j");
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_LT(AgentMemory::liveBytes(), before + size / 2);
  use("k");
  EXPECT_EQ(runtime.transcript({"clEnqueueReadBuffer"}).size(), 2U);
  EXPECT_GT(AgentMemory::liveBytes(), before + size);
  EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
}

// Without an event that shows the end of the transfers their memory is never
// freed. Keeping it must not need memory in turn.
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
  boundary.unload();
  runtime.runAll();
}

// The requests cannot all be tried: the log that is written anew grows from
// launch to launch, and with it their number.
TEST_F(RefusedLaunch, LosesNoRowOfALogThatWasDeleted) {
  create("j", 1);
  for (std::size_t n = 1; n != 60; ++n) {
    SCOPED_TRACE("request " + std::to_string(n) + " is refused");
    EXPECT_EQ(launch(), CL_SUCCESS);
    const std::size_t before = linesOfLog();
    std::filesystem::remove(folder.file(".auto.csv"));
    AgentMemory::refuse(n);
    try {
      launch();
    } catch (const std::bad_alloc &) {
    }
    AgentMemory::refuseNothing();
    EXPECT_EQ(launch(), CL_SUCCESS);
    EXPECT_GT(linesOfLog(), before);
  }
}
