// Tests of what runs when the application launches a kernel.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;

static constexpr const char *warning =
    "Corvane's kernel cannot be launch due to incompatible ND range values or "
    "non-expected input scalar values\n";

TEST(NormalLaunch, RunsTheVariantInPlaceOfTheKernel) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.launch(kernel, {1024}, {64}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[256]", "[64]")));
}

TEST(NormalLaunch, LeavesTheApplicationsSizesAlone) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_l0S2");
  cl_kernel kernel = app.create("k");
  const SizeList global{64};
  const SizeList local{8};
  EXPECT_EQ(app.launch(kernel, global, local), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_l0S2", "[32]", "[4]")));
  EXPECT_THAT(global, ElementsAre(64));
  EXPECT_THAT(local, ElementsAre(8));
}

TEST(NormalLaunch, RewritesOnlyTheCoarsenedDimension) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_c1S2");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.launch(kernel, {12, 1000, 5}, {3, 8, 1}), CL_SUCCESS);
  EXPECT_THAT(
      app.launches(),
      ElementsAre(plainLaunch("k_coarsed_c1S2", "[12, 504, 5]", "[3, 8, 1]")));
}

TEST(NormalLaunch, ShowsZerosToTheConditionsWhenThereIsNoLocalSize) {
  Application app;
  // An l variant accepts a local size of zero; a c variant does not.
  app.program.kernel("k").kernel("k_coarsed_l0S2");
  app.program.kernel("j").kernel("j_coarsed_c0S2");
  EXPECT_EQ(app.launch(app.create("k"), {7}), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.create("j"), {8}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k_coarsed_l0S2", "[3]"),
                                          plainLaunch("j", "[8]")));
}

TEST(NormalLaunch, PassesOffsetWaitListAndEventToTheVariant) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  cl_event gate = app.runtime.addEvent();
  cl_event done = nullptr;
  const std::size_t offset = 2;
  const std::size_t global = 16;
  EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), kernel, 1,
                                          &offset, &global, nullptr, 1, &gate,
                                          &done),
            CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel "
                          "k_coarsed_g0S4, 1, [2], [4], null, [event 1], "
                          "event 2)"));
  EXPECT_EQ(app.cl.clReleaseEvent(done), CL_SUCCESS);
  app.runtime.endEvent(gate);
}

TEST(NormalLaunch, RunsTheOriginalSilentlyWhenNoVariantAcceptsTheRange) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4").kernel("k_coarsed_g1S2");
  cl_kernel kernel = app.create("k");
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {18}, {2}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[18]", "[2]")));
  EXPECT_EQ(errors.text(), "");
}

TEST(NormalLaunch, WarnsAndRunsTheOriginalWhenAnArgumentIsNotAsExpected) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{10});
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), warning);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), std::string(warning) + warning);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k", "[16]"), plainLaunch("k", "[16]")));
}

TEST(NormalLaunch, RunsTheVariantAgainWhenTheArgumentIsAsExpected) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{12});
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "");
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4d0S4", "[4]")));
}

TEST(NormalLaunch, ReportsAndReturnsTheFailureOfAVariant) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  app.runtime.answer("clEnqueueNDRangeKernel", CL_INVALID_WORK_GROUP_SIZE, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_INVALID_WORK_GROUP_SIZE);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 910: CL Error: CL_INVALID_WORK_GROUP_SIZE\n");
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(NormalLaunch, ReportsAndReturnsTheFailureOfTheOriginal) {
  Application app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  app.runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(errors.text(), "QrlAgent:: 910: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST(NormalLaunch, PassesAKernelOfAnUnknownProgramThrough) {
  Application app;
  const ProgramScript unknown =
      app.runtime.addProgram().alreadyBuilt().kernel("k");
  cl_kernel kernel = app.cl.clCreateKernel(unknown, "k", nullptr);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre(plainLaunch("k", "[16]", "[4]")));
}

TEST(NormalLaunch, PassesNonsenseThroughAndReportsTheRuntimesAnswer) {
  Application app;
  ErrorCapture errors;
  EXPECT_EQ(app.launch(nullptr, {16}), CL_INVALID_KERNEL);
  EXPECT_EQ(errors.text(), "QrlAgent:: 910: CL Error: CL_INVALID_KERNEL\n");
}

TEST(NormalLaunch, FollowsTheSizesOfEachLaunch) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {15}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {32}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {32}, {3}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {32, 1}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              testing::ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]"),
                                   plainLaunch("k_coarsed_g0S4", "[4]"),
                                   plainLaunch("k", "[15]"),
                                   plainLaunch("k_coarsed_g0S4", "[8]"),
                                   plainLaunch("k", "[32]", "[3]"),
                                   plainLaunch("k_coarsed_g0S4", "[8, 1]")));
}

TEST(NormalLaunch, FollowsTheDimensionsOfEachLaunch) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_g1S2");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.launch(kernel, {16, 4}), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              testing::ElementsAre(plainLaunch("k_coarsed_g1S2", "[16, 2]"),
                                   plainLaunch("k", "[16]")));
}
