// Tests of transfers that are still running when their launch, its buffers or
// the agent's state are gone. The address sanitizer finds memory that is freed
// too early.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
/// An autotuned launch of which no command has run yet.
struct LateLaunch : TuningApplication {
  static constexpr std::size_t size = 4096;
  cl_kernel kernel;
  cl_mem buffer;

  explicit LateLaunch(const Variables &more = {},
                      const std::function<void(DispatchTable &)> &prepare = {})
      : TuningApplication(more, prepare) {
    program.kernel("k", 1, [](const Launch &l) { ++l.buffer(0)[0]; });
    program.kernel("k_coarsed_g0S4", 1,
                   [](const Launch &l) { l.buffer(0).assign(size, 99); });
    kernel = create("k");
    buffer = createBuffer(std::vector<unsigned char>(size, 1));
    set(kernel, 0, buffer);
    runtime.late();
  }
  cl_int launchNow() { return launch(kernel, {16}); }

  // Checks the contents of the buffer, which must not be gone yet.
  void expectResult(unsigned char first) {
    std::vector<unsigned char> expected(size, 1);
    expected[0] = first;
    EXPECT_EQ(runtime.bytes(buffer), expected);
  }
};
} // namespace

TEST(LateTransfers, OutliveAnUnload) {
  LateLaunch app;
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  app.agent.unload();
  app.runtime.runAll();
  EXPECT_THAT(app.runtime.waiting(), IsEmpty());
  app.expectResult(2);
}

TEST(LateTransfers, OutliveAFlushAtTheReleaseOfAContext) {
  LateLaunch app(Variables{{variable::flushOnReleaseContext, "1"}});
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  EXPECT_EQ(app.cl.clReleaseContext(app.runtime.context()), CL_SUCCESS);
  app.runtime.runAll();
  app.expectResult(2);
}

TEST(LateTransfers, OutliveTheReleaseOfTheirBuffer) {
  LateLaunch app;
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  EXPECT_EQ(app.cl.clReleaseMemObject(app.buffer), CL_SUCCESS);
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  app.runtime.runAll();
  EXPECT_THAT(app.runtime.waiting(), IsEmpty());
  EXPECT_THAT(app.log(), testing::EndsWith("baseline,1.000\n"));
}

namespace {
std::function<void()> &bufferIsGone() {
  static std::function<void()> destructor;
  return destructor;
}

cl_int CL_API_CALL keepDestructor(cl_mem buffer,
                                  void(CL_CALLBACK *destructor)(cl_mem, void *),
                                  void *userData) {
  bufferIsGone() = [=] { destructor(buffer, userData); };
  return CL_SUCCESS;
}
} // namespace

TEST(LateTransfers, OutliveTheRecordOfTheirBuffer) {
  // A runtime that reports the end of a buffer while transfers are under way.
  LateLaunch app({}, [](DispatchTable &table) {
    table.clSetMemObjectDestructorCallback = keepDestructor;
  });
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  bufferIsGone()();
  app.runtime.runAll();
  app.expectResult(2);
}

TEST(LateTransfers, OutliveAKernelThatCouldNotBeLaunched) {
  LateLaunch app;
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 2);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.launchNow(), CL_OUT_OF_RESOURCES);
  }
  app.agent.unload();
  app.runtime.runAll();
  app.expectResult(1);
}

TEST(LateTransfers, OutliveALaunchThatCannotBeWatched) {
  LateLaunch app;
  app.runtime.answer("clSetEventCallback", CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  app.agent.unload();
  app.runtime.runAll();
  app.expectResult(2);
}

TEST(LateTransfers, OutliveAVariantThatCouldNotBeLaunched) {
  LateLaunch app;
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(app.launchNow(), CL_SUCCESS);
  app.agent.unload();
  app.runtime.runAll();
  app.expectResult(2);
}

TEST(LateTransfers, OfSeveralLaunchesShareTheMemoryInOrder) {
  LateLaunch app;
  cl_event first = nullptr;
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, &first), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {16}, {}, nullptr, {first}), CL_SUCCESS);
  EXPECT_EQ(app.cl.clReleaseEvent(first), CL_SUCCESS);
  app.agent.unload();
  app.runtime.runAll();
  app.expectResult(3);
}
