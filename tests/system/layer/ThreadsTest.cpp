// Tests of the layer on many threads at once.

#include "tests/system/layer/LayeredRuntime.h"

#include <array>
#include <atomic>
#include <functional>
#include <random>
#include <thread>
#include <utility>

using namespace corvane::test;
using testing::IsEmpty;

namespace {

constexpr unsigned threadCount = 8;
constexpr unsigned rounds = 40;

class LayeredThreads : public LayeredRuntime {
protected:
  void workInAllThreads() {
    for (unsigned i = 0; i < threadCount * rounds; ++i)
      withVariant(runtime.sourceMakes());
    runtime.recycleHandles();
    std::array<std::thread, threadCount> threads;
    for (unsigned i = 0; i < threadCount; ++i)
      threads[i] = std::thread([this, i] { work(i); });
    for (std::thread &thread : threads)
      thread.join();
  }

  /// Whether one thread ends the agent in the middle of its work.
  std::atomic<bool> endsTheAgent{false};

private:
  static void CL_CALLBACK notified(cl_program, void *userData) {
    ++*static_cast<unsigned *>(userData);
  }

  void work(unsigned number) {
    std::mt19937 random(number);
    for (unsigned round = 0; round < rounds; ++round) {
      if (endsTheAgent && number == 0 && round == rounds / 2) {
        EXPECT_EQ(cl().clReleaseContext(runtime.context()), CL_SUCCESS);
      }
      useProgram(random() % 2 == 0);
      useQueue(random() % 2 == 0);
    }
  }

  void useProgram(bool notifies) {
    cl_program program = createProgram();
    unsigned calls = 0;
    EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, "",
                                  notifies ? notified : nullptr,
                                  notifies ? &calls : nullptr),
              CL_SUCCESS);
    EXPECT_EQ(calls, notifies ? 1u : 0u);
    EXPECT_EQ(cl().clRetainProgram(program), CL_SUCCESS);
    std::array<cl_kernel, 8> kernels{};
    cl_uint count = 0;
    EXPECT_EQ(cl().clCreateKernelsInProgram(program, 8, kernels.data(), &count),
              CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
    const size_t global = 64;
    const size_t local = 16;
    for (cl_uint i = 0; i < count; ++i) {
      EXPECT_EQ(cl().clEnqueueNDRangeKernel(runtime.queue(), kernels[i], 1,
                                            nullptr, &global, &local, 0,
                                            nullptr, nullptr),
                CL_SUCCESS);
      EXPECT_EQ(cl().clRetainKernel(kernels[i]), CL_SUCCESS);
      EXPECT_EQ(cl().clReleaseKernel(kernels[i]), CL_SUCCESS);
      EXPECT_EQ(cl().clReleaseKernel(kernels[i]), CL_SUCCESS);
    }
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  }

  void useQueue(bool timed) {
    cl_command_queue queue = cl().clCreateCommandQueue(
        runtime.context(), runtime.device(),
        timed ? CL_QUEUE_PROFILING_ENABLE : 0, nullptr);
    EXPECT_EQ(cl().clRetainCommandQueue(queue), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseCommandQueue(queue), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseCommandQueue(queue), CL_SUCCESS);
  }
};

} // namespace

TEST_F(LayeredThreads, LeaveNothingBehindInNormalMode) {
  load();
  workInAllThreads();
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredThreads, LeaveNothingBehindWhenAutotuned) {
  loadAutotuning();
  workInAllThreads();
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredThreads, LeaveNothingBehindWhenTheResultsAreWrittenMeanwhile) {
  loadAutotuning({{"CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1"}});
  cl().clRetainContext(runtime.context());
  endsTheAgent = true;
  workInAllThreads();
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

namespace {
/// Has another thread do something while the runtime builds or links.
class LayeredBuilds : public LayeredRuntime {
protected:
  void inCall(const char *entry, std::function<void()> action) {
    runtime.whenCalled(entry, [this, action] {
      if (!std::exchange(acted, true))
        std::thread(action).join();
    });
  }

  void launch(cl_program program) {
    cl_kernel kernel = cl().clCreateKernel(program, "k", nullptr);
    const size_t global = 64;
    EXPECT_EQ(cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                          &global, nullptr, 0, nullptr,
                                          nullptr),
              CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  }

  cl_program builtProgram() {
    withVariant(runtime.sourceMakes());
    cl_program program = createProgram();
    EXPECT_EQ(build(program), CL_SUCCESS);
    return program;
  }

  static void CL_CALLBACK ignore(cl_program, void *) {}

  bool acted = false;
};
} // namespace

TEST_F(LayeredBuilds, LetOtherThreadsLaunch) {
  cl_program program = builtProgram();
  inCall("clBuildProgram", [&] { launch(program); });
  EXPECT_EQ(build(createProgram()), CL_SUCCESS);
  EXPECT_TRUE(acted);
}

TEST_F(LayeredBuilds, LetOtherThreadsLaunchWithANotification) {
  cl_program program = builtProgram();
  inCall("clBuildProgram", [&] { launch(program); });
  EXPECT_EQ(
      cl().clBuildProgram(createProgram(), 0, nullptr, "", ignore, nullptr),
      CL_SUCCESS);
  EXPECT_TRUE(acted);
}

// The build is repeated for a while, because the runtime may still hold
// kernels.
TEST_F(LayeredBuilds, LetOtherThreadsLaunchWhileTheyAreRefused) {
  cl_program program = builtProgram();
  inCall("clBuildProgram", [&] { launch(program); });
  runtime.answer("clBuildProgram", CL_INVALID_OPERATION);
  testing::internal::CaptureStderr();
  EXPECT_EQ(build(createProgram()), CL_INVALID_OPERATION);
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(acted);
}

TEST_F(LayeredBuilds, OfLinksLetOtherThreadsLaunch) {
  cl_program program = builtProgram();
  inCall("clLinkProgram", [&] { launch(program); });
  EXPECT_NE(cl().clLinkProgram(runtime.context(), 0, nullptr, "", 0, nullptr,
                               nullptr, nullptr, nullptr),
            nullptr);
  EXPECT_TRUE(acted);
}

TEST_F(LayeredBuilds, OfOneProgramByTwoThreadsLeaveItsVariantsOnce) {
  cl_program program = builtProgram();
  inCall("clBuildProgram", [&] { EXPECT_EQ(build(program), CL_SUCCESS); });
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_TRUE(acted);
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_THAT(createKernel(program, "k"),
              testing::ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
}
