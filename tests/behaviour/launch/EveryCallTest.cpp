// Tests of what other threads may do, and of what may fail, during any call
// that a hook makes to the runtime.

#include "tests/behaviour/launch/WholeLife.h"

#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class EveryCall : public testing::TestWithParam<const char *> {
protected:
  // Calls every hook; \p action runs once, within the first call to the entry.
  void liveWith(const std::function<void()> &action) {
    app.runtime.whenCalled(GetParam(), [this, action] {
      if (!std::exchange(done, true))
        std::thread(action).join();
    });
    app.liveThrough();
    EXPECT_TRUE(done) << GetParam() << " was not called";
  }

  WholeLife app;
  bool done = false;
};

INSTANTIATE_TEST_SUITE_P(, EveryCall, testing::ValuesIn(calledWithLock),
                         [](const auto &entry) {
                           return std::string(entry.param);
                         });
} // namespace

// Hangs if the agent holds another lock than the agent lock while it calls the
// runtime.
TEST_P(EveryCall, KeepsNoThreadWaitingThatNeedsNoAgentLock) {
  cl_mem first = createBuffer(app.runtime, app.cl);
  cl_mem second = createBuffer(app.runtime, app.cl);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, first);
  app.runtime.holdCallbacks();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);

  liveWith([&] {
    EXPECT_EQ(kernelNames(app.cl, app.program), "k");
    EXPECT_EQ(kernelCount(app.cl, app.program), 1U);
    EXPECT_NE(app.cl.clCreateCommandQueue(app.runtime.context(),
                                          app.runtime.device(), 0, nullptr),
              nullptr);
    EXPECT_NE(app.cl.clCreateProgramWithSource(app.runtime.context(), 0,
                                               nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(app.cl.clReleaseMemObject(second), CL_SUCCESS);
    // The end of the buffer, and of the two runs above.
    EXPECT_GE(app.runtime.fireCallbacks(), 3U);
  });
  app.runtime.holdCallbacks(false);
  app.runtime.fireCallbacks();
}

TEST_P(EveryCall, MayMeetAFlush) {
  liveWith([&] {
    EXPECT_EQ(app.cl.clReleaseContext(app.runtime.context()), CL_SUCCESS);
    EXPECT_NE(app.folder.read("autotune.csv"), "");
  });
  // Everything is as it was before the load.
  EXPECT_EQ(kernelNames(app.cl, app.program), "k;k_coarsed_g0S4");
  app.liveThrough();
}

// A real runtime throws nothing; the exception plays memory that runs out.
TEST(ThrowingCall, LeavesTheAgentUnlocked) {
  for (const char *entry :
       {"clBuildProgram", "clLinkProgram", "clReleaseProgram", "clCreateKernel",
        "clCreateKernelsInProgram", "clReleaseKernel", "clSetKernelArg",
        "clCreateBuffer", "clEnqueueNDRangeKernel"}) {
    WholeLife app;
    bool thrown = false;
    app.runtime.whenCalled(entry, [&] {
      if (!std::exchange(thrown, true))
        throw std::bad_alloc();
    });
    EXPECT_THROW(app.liveThrough(), std::bad_alloc) << entry;
    std::thread([&] { app.liveThrough(); }).join(); // hangs here if it is not
  }
}

namespace {
/// An application whose kernel works in place. Its two variants first spoil the
/// buffers and then do what the kernel does.
template <typename Mode> struct SpoilingApplication : Mode {
  cl_kernel kernel;
  cl_mem y;
  cl_mem x;

  SpoilingApplication() {
    const auto add = [](const Launch &l) { l.buffer(0)[0] += l.buffer(1)[0]; };
    this->program.kernel("k", 2, add);
    this->program.kernel("k_coarsed_g0S2", 2, add);
    this->program.kernel("k_coarsed_g0S4", 3, add);
    kernel = this->create("k");
    y = createBuffer(this->runtime, this->cl, 1);
    x = createBuffer(this->runtime, this->cl, 1);
    this->runtime.setBytes(y, {1});
    this->runtime.setBytes(x, {10});
    this->set(kernel, 0, y);
    this->set(kernel, 1, x);
  }
};
} // namespace

// Launches once with each call of the launch failing in turn.
template <typename Mode> static std::size_t failEachCall() {
  for (std::size_t nth = 1;; ++nth) {
    SpoilingApplication<Mode> app;
    app.runtime.forgetTranscript();
    app.runtime.answerAny(nth, CL_OUT_OF_RESOURCES);
    ErrorCapture errors;
    const cl_int status = app.launch(app.kernel, {16}, {4});
    const std::vector<std::string> calls = app.runtime.transcript();
    EXPECT_THAT(app.runtime.bytes(app.x), ElementsAre(10)) << nth;
    EXPECT_THAT(app.runtime.bytes(app.y),
                ElementsAre(status == CL_SUCCESS ? 11 : 1))
        << nth;
    if (calls.size() < nth)
      return calls.size();
    if (calls[nth - 1].find("clReleaseEvent") != 0) {
      EXPECT_THAT(app.runtime.alive("event"), IsEmpty()) << calls[nth - 1];
    }
  }
}

TEST(FailingCall, SpoilsNothingInNormalMode) {
  EXPECT_GE(failEachCall<Application>(), 5U);
}

TEST(FailingCall, SpoilsNothingWhileTuning) {
  EXPECT_GE(failEachCall<TuningApplication>(), 30U);
}

TEST(FailingCall, LetsEveryHookComeToItsEnd) {
  std::size_t calls = 50; // the first round finds the true number
  for (std::size_t nth = 1; nth <= calls; ++nth) {
    WholeLife app;
    const std::size_t before = app.runtime.callCount();
    app.runtime.answerAny(nth, CL_OUT_OF_HOST_MEMORY);
    ErrorCapture errors;
    app.liveThrough();
    calls = std::max(calls, app.runtime.callCount() - before);
    app.liveThrough();
    EXPECT_EQ(kernelNames(app.cl, app.program), "k") << nth;
  }
  EXPECT_GT(calls, 50U);
}
