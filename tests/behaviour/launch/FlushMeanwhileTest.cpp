// Tests of a flush on another thread while a hook is running. The address
// sanitizer finds a state that is destroyed too early.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <thread>
#include <utility>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::SizeIs;

namespace {
/// A kernel of one buffer with a variant.
struct Interrupted : TuningApplication {
  cl_kernel kernel;
  cl_mem buffer;

  Interrupted()
      : TuningApplication(Variables{{variable::flushOnReleaseContext, "1"}}) {
    program.kernel("k", 1, [](const Launch &l) { ++l.buffer(0)[0]; });
    program.kernel("k_coarsed_g0S4", 1,
                   [](const Launch &l) { l.buffer(0)[0] = 99; });
    kernel = create("k");
    buffer = createBuffer({1});
    set(kernel, 0, buffer);
    runtime.forgetTranscript();
  }

  // Has another thread flush, from beginning to end, during the next call to
  // \p entry.
  void flushWithin(const std::string &entry) {
    runtime.whenCalled(entry, [this] {
      if (!std::exchange(flushed, true))
        std::thread([this] {
          EXPECT_EQ(cl.clReleaseContext(runtime.context()), CL_SUCCESS);
        }).join();
    });
  }
  bool flushed = false;
};
} // namespace

TEST(FlushMeanwhile, LetsALaunchComeToItsEndAndLeavesNoTraceOfIt) {
  Interrupted app;
  app.flushWithin("clEnqueueReadBuffer");
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
  EXPECT_EQ(app.log(), app.header);

  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(2));
}

TEST(FlushMeanwhile, LetsTheCreationOfAllKernelsComeToItsEnd) {
  Interrupted app;
  app.flushWithin("clCreateKernelsInProgram");
  cl_kernel created = nullptr;
  cl_uint count = 0;
  EXPECT_EQ(app.cl.clCreateKernelsInProgram(app.program, 1, &created, &count),
            CL_SUCCESS);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(app.release(created), CL_SUCCESS);
}

TEST(FlushMeanwhile, LetsAKernelsVariantsBeCreated) {
  Interrupted app;
  app.runtime.whenCalled("clGetKernelInfo", [&app] {
    // Once the name was asked for, the record is about to be made.
    app.flushWithin("clCreateKernel");
  });
  cl_kernel second = app.create("k");
  EXPECT_TRUE(app.flushed);
  EXPECT_EQ(app.release(second), CL_SUCCESS);
}

// After two flushes two states are kept until the end of the call, which may be
// using either.
TEST(FlushMeanwhile, MayComeTwiceWithinOneCall) {
  Interrupted app;
  app.runtime.whenCalled("clEnqueueReadBuffer", [&app] {
    if (std::exchange(app.flushed, true))
      return;
    EXPECT_EQ(app.cl.clReleaseContext(app.runtime.context()), CL_SUCCESS);
    EXPECT_EQ(app.agent.loadAgain(), CL_SUCCESS);
    app.agent.unload();
  });
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.bytes(app.buffer), ElementsAre(2));
  EXPECT_EQ(app.log(), app.header);
}
