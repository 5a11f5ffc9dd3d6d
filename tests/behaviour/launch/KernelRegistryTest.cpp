// Tests of what is created with the application's kernels.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(KernelRegistry, CreatesTheVariantsBesideTheKernelInTheirOrder) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4").kernel("other");
  app.program.kernel("other_coarsed_g0S2").kernel("k_coarsed_l0S2");
  app.create("k");

  EXPECT_THAT(app.runtime.transcript({"clCreateKernel"}),
              ElementsAre("clCreateKernel(program 1, \"k\", &)",
                          "clCreateKernel(program 1, \"k_coarsed_g0S4\", &)",
                          "clCreateKernel(program 1, \"k_coarsed_l0S2\", &)"));
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4",
                          "kernel k_coarsed_l0S2"));
}

TEST(KernelRegistry, AsksForVariantsByTheCanonicalFormOfTheirNames) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_d2S4d1S2g0S4S1S1");
  ErrorCapture errors; // the runtime does not know the canonical form
  app.create("k");
  EXPECT_THAT(app.runtime.transcript({"clCreateKernel"}),
              testing::Contains(
                  "clCreateKernel(program 1, \"k_coarsed_g0S4d1S2d2S4\", &)"));
}

// The name in the log is that of a copy of the variant's record, and a copy has
// its restrictions reversed.
TEST(KernelRegistry, CallsAVariantWithRestrictionsByAnotherNameInTheLog) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_r3r1r2g0S4");
  cl_kernel kernel = app.create("k");
  EXPECT_THAT(app.runtime.transcript({"clCreateKernel"}),
              testing::Contains(
                  "clCreateKernel(program 1, \"k_coarsed_r3r1r2g0S4\", &)"));
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(), std::string(app.header) + "k,16,,,0,,,r2r1r3g0S4,1.000\n"
                                                 "k,16,,,0,,,baseline,1.000\n");
}

TEST(KernelRegistry, ReportsAVariantThatCannotBeCreatedAndNeverLaunchesIt) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  app.build();
  app.runtime.answer("clCreateKernel", CL_INVALID_KERNEL_NAME, 2);
  ErrorCapture errors;
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 460: CL Error: CL_INVALID_KERNEL_NAME\n");

  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
}

TEST(KernelRegistry, LaunchesTheVariantsThatCouldBeCreated) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S2").kernel("k_coarsed_g0S4");
  app.program.kernel("k_coarsed_g0S8");
  app.build();
  app.runtime.answer("clCreateKernel", CL_OUT_OF_RESOURCES, 2);
  app.runtime.answer("clCreateKernel", CL_OUT_OF_RESOURCES, 3);
  ErrorCapture errors;
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(errors.text(), "QrlAgent:: 460: CL Error: CL_OUT_OF_RESOURCES\n"
                           "QrlAgent:: 460: CL Error: CL_OUT_OF_RESOURCES\n");

  app.launch(kernel, {64});
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S8", "[8]")));
}

TEST(KernelRegistry, ReleasesNothingForAVariantThatWasNotCreated) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  app.build();
  app.runtime.answer("clCreateKernel", CL_INVALID_KERNEL_NAME, 2);
  ErrorCapture errors;
  cl_kernel kernel = app.create("k");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.release(kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clReleaseKernel"}),
              ElementsAre("clReleaseKernel(kernel k)"));
}

TEST(KernelRegistry, HandsTheRuntimesFailureToTheApplication) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  app.build();
  app.runtime.forgetTranscript();
  cl_int status = CL_SUCCESS;
  EXPECT_EQ(app.cl.clCreateKernel(app.program, "x", &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_KERNEL_NAME);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre("clCreateKernel(program 1, \"x\", &)"));
}

TEST(KernelRegistry, NeedsNoPlaceForTheStatus) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  app.build();
  EXPECT_NE(app.cl.clCreateKernel(app.program, "k", nullptr), nullptr);
  EXPECT_EQ(app.cl.clCreateKernel(app.program, "x", nullptr), nullptr);
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
}

TEST(KernelRegistry, KnowsNoKernelsOfAProgramThatItDoesNotKnow) {
  Application app;
  const ProgramScript unknown =
      app.runtime.addProgram().alreadyBuilt().kernel("k").kernel(
          "k_coarsed_g0S4");
  cl_kernel kernel = app.cl.clCreateKernel(unknown, "k", nullptr);
  EXPECT_THAT(app.runtime.alive("kernel"), ElementsAre("kernel k"));

  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
  EXPECT_EQ(app.release(kernel), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"), IsEmpty());
}

TEST(KernelRegistry, KeepsARecordOfAKernelWithoutVariants) {
  TuningApplication app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);

  // Only a recorded kernel is timed.
  EXPECT_EQ(app.log(), std::string(app.header) + "k,16,,,0,,,baseline,1.000\n");
}

TEST(KernelRegistry, LaunchesAKernelWithoutVariantsUnchanged) {
  Application app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre(plainLaunch("k", "[16]", "[4]")));
}

TEST(KernelRegistry, KeepsNoRecordOfAVariantThatTheApplicationCreates) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel variant = app.create("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(variant, {16}), CL_SUCCESS);
  EXPECT_EQ(app.release(variant), CL_SUCCESS);

  EXPECT_THAT(app.runtime.transcript({"clEnqueueNDRangeKernel", "clFlush"}),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[16]")));
  EXPECT_EQ(app.log(), app.header);
  // The null entry of the variant hides no record of another kernel.
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.log(),
            std::string(app.header) +
                "k,16,,,0,,,g0S4,1.000\nk,16,,,0,,,baseline,1.000\n");
}
