// Tests of the creation of all kernels of a program at once.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// A program of two ordinary kernels and a variant.
struct TwoKernels : Application {
  static constexpr cl_uint untouched = 77;
  std::array<cl_kernel, 6> kernels{};
  cl_uint count = untouched;

  TwoKernels() {
    program.kernel("k").kernel("k_coarsed_g0S4").kernel("j");
    build();
    runtime.forgetTranscript();
  }
  cl_int createAll(cl_uint size) {
    return cl.clCreateKernelsInProgram(program, size, kernels.data(), &count);
  }
};
} // namespace

TEST(KernelsInProgram, AreCountedWithoutTheVariants) {
  TwoKernels app;
  EXPECT_EQ(
      app.cl.clCreateKernelsInProgram(app.program, 0, nullptr, &app.count),
      CL_SUCCESS);
  EXPECT_EQ(app.count, 2U);
  EXPECT_THAT(app.runtime.transcript({"clReleaseKernel"}),
              ElementsAre("clReleaseKernel(kernel k_coarsed_g0S4)"));
}

TEST(KernelsInProgram, ReleaseTheVariantThatTheRuntimeCreatedAtOnce) {
  TwoKernels app;
  EXPECT_EQ(app.createAll(2), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clCreateKernelsInProgram",
                                      "clReleaseKernel", "clCreateKernel"}),
              ElementsAre("clCreateKernelsInProgram(program 1, 0, null, &)",
                          "clCreateKernelsInProgram(program 1, 3, &, &)",
                          "clCreateKernel(program 1, \"k_coarsed_g0S4\", &)",
                          "clReleaseKernel(kernel k_coarsed_g0S4)"));
}

TEST(KernelsInProgram, AreWrittenWithoutTheVariants) {
  TwoKernels app;
  EXPECT_EQ(app.createAll(2), CL_SUCCESS);
  EXPECT_EQ(app.count, 2U);
  app.launch(app.kernels[0], {15});
  app.launch(app.kernels[1], {15});
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k", "[15]"), plainLaunch("j", "[15]")));
  EXPECT_EQ(app.kernels[2], nullptr);
}

TEST(KernelsInProgram, HaveTheirVariantsBesideThem) {
  TwoKernels app;
  EXPECT_EQ(app.createAll(2), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernels[0], {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4 2", "[4]")));
  EXPECT_EQ(app.release(app.kernels[0]), CL_SUCCESS);
  EXPECT_EQ(app.release(app.kernels[1]), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelsInProgram, AreRefusedWhenTheArrayIsLarger) {
  TwoKernels app;
  EXPECT_EQ(app.createAll(5), CL_INVALID_VALUE);
  EXPECT_EQ(app.count, TwoKernels::untouched);
}

TEST(KernelsInProgram, AreWrittenBeyondTheArrayWhenItIsSmaller) {
  TwoKernels app;
  EXPECT_EQ(app.createAll(1), CL_SUCCESS);
  EXPECT_EQ(app.count, 2U);
  EXPECT_NE(app.kernels[0], nullptr);
  EXPECT_NE(app.kernels[1], nullptr);
  EXPECT_EQ(app.kernels[2], nullptr);
}

TEST(KernelsInProgram, IncludeOneWhoseNameIsTooLongForAVariants) {
  Application app;
  const std::string name = std::string(2000, 'x') + "_coarsed_g0S4";
  app.program.kernel("k").kernel(name);
  app.build();
  std::array<cl_kernel, 3> kernels{};
  cl_uint count = 0;
  EXPECT_EQ(
      app.cl.clCreateKernelsInProgram(app.program, 2, kernels.data(), &count),
      CL_SUCCESS);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(app.launch(kernels[1], {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch(name, "[16]")));
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel " + name));
}

TEST(KernelsInProgram, NeedNoPlaceForTheirCount) {
  TwoKernels app;
  EXPECT_EQ(app.cl.clCreateKernelsInProgram(app.program, 2, app.kernels.data(),
                                            nullptr),
            CL_SUCCESS);
  EXPECT_NE(app.kernels[1], nullptr);
}

TEST(KernelsInProgram, AreInvalidForAProgramThatIsNotKnown) {
  TwoKernels app;
  const ProgramScript unknown =
      app.runtime.addProgram().alreadyBuilt().kernel("k");
  EXPECT_EQ(app.cl.clCreateKernelsInProgram(unknown, 1, app.kernels.data(),
                                            &app.count),
            CL_INVALID_PROGRAM);
  EXPECT_THAT(app.runtime.transcript(), IsEmpty());
  EXPECT_EQ(app.count, TwoKernels::untouched);
}

TEST(KernelsInProgram, GoOnWhenTheCountIsNotKnown) {
  TwoKernels app;
  app.runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  EXPECT_EQ(
      app.cl.clCreateKernelsInProgram(app.program, 0, nullptr, &app.count),
      CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 535: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_THAT(app.runtime.transcript({"clCreateKernelsInProgram"}),
              ElementsAre("clCreateKernelsInProgram(program 1, 0, null, &)",
                          "clCreateKernelsInProgram(program 1, 0, null, &)"));
  EXPECT_EQ(app.count, 0U);
}

TEST(KernelsInProgram, EndWithTheRuntimesFailure) {
  TwoKernels app;
  app.runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_HOST_MEMORY, 2);
  ErrorCapture errors;
  EXPECT_EQ(app.createAll(2), CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(errors.text(), "");
  EXPECT_EQ(app.count, TwoKernels::untouched);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelsInProgram, AreTheRuntimesWithoutAState) {
  TwoKernels app;
  app.agent.unload();
  EXPECT_EQ(app.createAll(3), CL_SUCCESS);
  EXPECT_EQ(app.count, 3U);
  app.runtime.forgetTranscript();

  ErrorCapture errors;
  EXPECT_EQ(app.createAll(2), CL_INVALID_VALUE);
  EXPECT_EQ(errors.text(), "QrlAgent:: 576: CL Error: CL_INVALID_VALUE\n");
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre("clCreateKernelsInProgram(program 1, 2, &, &)"));
}

TEST(KernelsInProgram, AreThoseThatTheRuntimeMadeWhenItClaimsMore) {
  TwoKernels app;
  app.runtime.lies().kernelCount = 9999;
  EXPECT_EQ(app.createAll(2), CL_SUCCESS);
  EXPECT_EQ(app.count, 2U);
  EXPECT_EQ(app.kernels[2], nullptr);
}

TEST(KernelsInProgram, AreRefusedByTheRuntimeWhenItClaimsLess) {
  TwoKernels app;
  app.runtime.lies().kernelCount = 1;
  EXPECT_EQ(app.createAll(1), CL_INVALID_VALUE);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}
