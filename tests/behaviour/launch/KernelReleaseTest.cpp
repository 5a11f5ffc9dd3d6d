// Tests of how long a kernel's variants and its record last.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
struct CoarsedKernel : Application {
  cl_kernel kernel;
  CoarsedKernel() {
    program.kernel("k").kernel("k_coarsed_g0S4");
    kernel = create("k");
    runtime.forgetTranscript();
  }
};
} // namespace

TEST(KernelRelease, ReleasesTheVariantsWithTheLastReference) {
  CoarsedKernel app;
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre("clGetKernelInfo(kernel k, CL_KERNEL_REFERENCE_COUNT,"
                          " 4, &, null)",
                          "clReleaseKernel(kernel k)",
                          "clReleaseKernel(kernel k_coarsed_g0S4)"));
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelRelease, KeepsTheVariantsOfARetainedKernelUntilTheThirdRelease) {
  CoarsedKernel app;
  app.cl.clRetainKernel(app.kernel);
  app.cl.clRetainKernel(app.kernel);
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));

  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelRelease, KeepsTheRecordWhenTheCountIsNotKnown) {
  CoarsedKernel app;
  app.cl.clRetainKernel(app.kernel);
  app.runtime.answer("clGetKernelInfo", CL_OUT_OF_HOST_MEMORY, 1);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
    EXPECT_EQ(errors.text(),
              "QrlAgent:: 599: CL Error: CL_OUT_OF_HOST_MEMORY\n");
  }
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelRelease, KeepsTheVariantsWhenTheLastCountIsNotKnown) {
  CoarsedKernel app;
  app.runtime.answer("clGetKernelInfo", CL_OUT_OF_HOST_MEMORY, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel k_coarsed_g0S4"));
}

TEST(KernelRelease, ReportsAndReturnsAFailureAndKeepsTheRecord) {
  CoarsedKernel app;
  app.runtime.answer("clReleaseKernel", CL_INVALID_KERNEL, 1);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.release(app.kernel), CL_INVALID_KERNEL);
    EXPECT_EQ(errors.text(), "QrlAgent:: 601: CL Error: CL_INVALID_KERNEL\n");
  }
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(KernelRelease, DoesNotLookAtTheResultsOfReleasingVariants) {
  CoarsedKernel app;
  app.runtime.answer("clReleaseKernel", CL_OUT_OF_RESOURCES, 2);
  ErrorCapture errors;
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "");
}

TEST(KernelRelease, LeavesOtherKernelsOfTheSameNameAlone) {
  CoarsedKernel app;
  cl_kernel second = app.create("k");
  EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel k 2", "kernel k_coarsed_g0S4 2"));
  EXPECT_EQ(app.launch(second, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4 2", "[4]")));
}

TEST(KernelRelease, FindsEveryRecordAmongMany) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  std::vector<cl_kernel> kernels;
  for (int i = 0; i != 100; ++i)
    kernels.push_back(app.create("k"));
  for (std::size_t i = 0; i != kernels.size(); i += 2)
    EXPECT_EQ(app.release(kernels[i]), CL_SUCCESS);
  app.runtime.forgetTranscript();

  for (std::size_t i = 1; i < kernels.size(); i += 2) {
    EXPECT_EQ(app.launch(kernels[i], {16}), CL_SUCCESS);
    EXPECT_EQ(app.release(kernels[i]), CL_SUCCESS);
  }
  EXPECT_THAT(
      app.launches(),
      testing::AllOf(testing::SizeIs(50),
                     testing::Each(testing::HasSubstr("k_coarsed_g0S4"))));
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}
