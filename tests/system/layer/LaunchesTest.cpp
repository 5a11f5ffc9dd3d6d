// Tests of launches and kernels after the agent has written its results at a
// context's release.

#include "tests/system/layer/LayeredRuntime.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class LayeredLaunches : public LayeredRuntime {
protected:
  void SetUp() override {
    loadAutotuning({{"CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1"}});
    withVariant(runtime.sourceMakes());
    cl_program program = createProgram();
    build(program);
    kernel = cl().clCreateKernel(program, "k", nullptr);
    EXPECT_EQ(launch(), CL_SUCCESS);
    EXPECT_EQ(launches().size(), 2u) << "the variant and the kernel";
    EXPECT_EQ(cl().clRetainContext(runtime.context()), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseContext(runtime.context()), CL_SUCCESS);
    runtime.forgetTranscript();
  }

  cl_int launch(cl_event *event = nullptr) {
    const size_t global = 64;
    const size_t local = 16;
    return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                       &global, &local, 0, nullptr, event);
  }

  std::vector<std::string> launches() {
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }

  cl_kernel kernel = nullptr;
};
} // namespace

TEST_F(LayeredLaunches, ReachTheRuntimeOnceAfterTheResults) {
  cl_event event = nullptr;
  EXPECT_EQ(launch(&event), CL_SUCCESS);
  EXPECT_THAT(launches(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, "
                          "[64], [16], [], event 3)"));
  EXPECT_NE(event, nullptr);
}

TEST_F(LayeredLaunches, GetTheRuntimesErrorAfterTheResults) {
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(launch(), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(launches().size(), 1u);
}

TEST_F(LayeredLaunches,
       LeaveNoVariantBehindWhenTheirKernelGoesAfterTheResults) {
  cl().clRetainKernel(kernel);
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredLaunches, LeaveTheVariantsWhereTheReleaseFailed) {
  runtime.answer("clReleaseKernel", CL_OUT_OF_RESOURCES, 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 601: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_THAT(runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
}

namespace {
class LayeredFailedLaunches : public LayeredLaunches {
protected:
  void SetUp() override {
    loadAutotuning();
    withVariant(runtime.sourceMakes());
    cl_program program = createProgram();
    build(program);
    kernel = cl().clCreateKernel(program, "k", nullptr);
    runtime.forgetTranscript();
  }
};
} // namespace

TEST_F(LayeredFailedLaunches, AreNotRepeated) {
  // The variant's launch works, the kernel's does not.
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 2);
  testing::internal::CaptureStderr();
  EXPECT_EQ(launch(), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 1145: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_EQ(launches().size(), 2u);
}
