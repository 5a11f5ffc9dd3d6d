// Tests of hooks that the application calls after the results were written.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
/// A kernel with a variant that was tuned once before the flush.
struct Flushed : TuningApplication {
  cl_kernel kernel;
  explicit Flushed(const Variables &more = {}) : TuningApplication(more) {
    program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
    kernel = create("k");
    set(kernel, 0, cl_int{1});
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    if (more.empty())
      agent.unload();
    else
      EXPECT_EQ(cl.clReleaseContext(runtime.context()), CL_SUCCESS);
    runtime.forgetTranscript();
  }
};
} // namespace

TEST(AfterFlush, LaunchesAreOnlyFlushed) {
  Flushed app;
  ErrorCapture errors;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.chain(), ElementsAre("clFlush(queue 1)"));
  EXPECT_EQ(errors.text(), "");
}

TEST(AfterFlush, LaunchesAreOnlyFlushedWhenAContextsReleaseDidIt) {
  Flushed app(Variables{{variable::flushOnReleaseContext, "0"}});
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.chain(), ElementsAre("clFlush(queue 1)"));
}

TEST(AfterFlush, LaunchesOfUnknownKernelsAreOnlyFlushed) {
  Flushed app;
  EXPECT_EQ(app.launch(nullptr, {16}), CL_SUCCESS);
  EXPECT_THAT(app.chain(), ElementsAre("clFlush(queue 1)"));
}

TEST(AfterFlush, LaunchesLeaveTheLogAlone) {
  Flushed app;
  const std::string log = app.log();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(), log);
}

TEST(AfterFlush, EverythingElsePassesThrough) {
  Flushed app;
  EXPECT_EQ(app.set(app.kernel, 0, cl_int{2}), CL_SUCCESS);
  cl_kernel another = app.create("k");
  EXPECT_EQ(app.release(another), CL_SUCCESS);
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript(),
      ElementsAre("clSetKernelArg(kernel k, 0, 4, 02 00 00 00)",
                  "clCreateKernel(program 1, \"k\", &)",
                  "clGetKernelInfo(kernel k 2, CL_KERNEL_REFERENCE_COUNT, 4, "
                  "&, null)",
                  "clReleaseKernel(kernel k 2)",
                  "clGetKernelInfo(kernel k, CL_KERNEL_REFERENCE_COUNT, 4, &, "
                  "null)",
                  "clReleaseKernel(kernel k)"));
}

TEST(AfterFlush, NormalLaunchesPassThrough) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  app.agent.unload();
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(), ElementsAre(plainLaunch("k", "[16]")));
}

TEST(AfterFlush, FailedCallsAreStillReported) {
  Application app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  app.agent.unload();
  app.runtime.answer("clReleaseKernel", CL_INVALID_KERNEL, 1);
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(app.release(kernel), CL_INVALID_KERNEL);
  EXPECT_EQ(errors.text(), "QrlAgent:: 910: CL Error: CL_OUT_OF_RESOURCES\n"
                           "QrlAgent:: 601: CL Error: CL_INVALID_KERNEL\n");
}
