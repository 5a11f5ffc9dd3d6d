// Tests of when a variant gets the application's arguments.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// A kernel of two arguments with one variant.
struct TwoArguments : Application {
  cl_kernel kernel;
  TwoArguments() {
    program.kernel("k", 2).kernel("k_coarsed_g0S4", 2);
    kernel = create("k");
    set(kernel, 0, cl_int{7});
    set(kernel, 1, cl_int{8});
    runtime.forgetTranscript();
  }
  /// The arguments that were set since the transcript was forgotten.
  std::vector<std::string> settings() const {
    return runtime.transcript({"clSetKernelArg"});
  }
};

/// The call that gives the variant an argument of four bytes.
std::string given(int index, const std::string &bytes) {
  return "clSetKernelArg(kernel k_coarsed_g0S4, " + std::to_string(index) +
         ", 4, " + bytes + ")";
}
} // namespace

TEST(RecordedArguments, GivesTheVariantAllArgumentsWhenItIsLaunched) {
  TwoArguments app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(given(0, "07 00 00 00"), given(1, "08 00 00 00")));
}

TEST(RecordedArguments, ReplaysOnceForTwoLaunchesWithoutAChangeInBetween) {
  TwoArguments app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.settings(), IsEmpty());
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(RecordedArguments, GivesTheLaterOfTwoValuesOnceAtTheLaunch) {
  TwoArguments app;
  app.set(app.kernel, 1, cl_int{9});
  app.set(app.kernel, 1, cl_int{10});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(given(0, "07 00 00 00"), given(1, "0a 00 00 00")));
}

TEST(RecordedArguments, ReplaysEverythingAfterAnyChange) {
  TwoArguments app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  app.set(app.kernel, 1, cl_int{9});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(given(0, "07 00 00 00"), given(1, "09 00 00 00")));
}

TEST(RecordedArguments, KeepsACopyOfTheValue) {
  TwoArguments app;
  cl_int value = 5;
  app.set(app.kernel, 0, value);
  value = 6;
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.settings().at(0), given(0, "05 00 00 00"));
  EXPECT_EQ(value, 6);
}

TEST(RecordedArguments, DoesNotRecordWhatTheRuntimeRefused) {
  TwoArguments app;
  app.runtime.answer("clSetKernelArg", CL_INVALID_ARG_VALUE, 1);
  EXPECT_EQ(app.set(app.kernel, 0, cl_int{99}), CL_INVALID_ARG_VALUE);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.settings().at(0), given(0, "07 00 00 00"));
}

TEST(RecordedArguments, ReportsAFailedReplayAndGoesOn) {
  TwoArguments app;
  app.runtime.allowUnsetArguments();
  app.runtime.answer("clSetKernelArg", CL_INVALID_ARG_VALUE, 1);
  {
    ErrorCapture errors;
    EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
    EXPECT_EQ(errors.text(),
              "QrlAgent:: 721: CL Error: CL_INVALID_ARG_VALUE\n");
  }
  EXPECT_THAT(app.settings(), testing::SizeIs(2));
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));

  // The variant counts as up to date, so the setting that failed is not
  // repeated.
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.settings(), IsEmpty());
}

TEST(RecordedArguments, ReplaysAndTestsUpToAGapUntilItIsFilled) {
  Application app;
  app.program.kernel("k", 4).kernel("k_coarsed_g0S4d3S4", 4);
  cl_kernel kernel = app.create("k");
  app.runtime.allowUnsetArguments();
  app.set(kernel, 0, cl_char{1});
  app.set(kernel, 1, cl_char{2});
  app.set(kernel, 3, cl_int{10}); // not divisible, but after the gap
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript({"clSetKernelArg", "clEnqueueNDRangeKernel"}),
      ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4d3S4, 0, 1, 01)",
                  "clSetKernelArg(kernel k_coarsed_g0S4d3S4, 1, 1, 02)",
                  plainLaunch("k_coarsed_g0S4d3S4", "[4]")));

  app.set(kernel, 2, cl_char{3});
  app.runtime.forgetTranscript();
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));

  app.set(kernel, 3, cl_int{12});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript({"clSetKernelArg", "clEnqueueNDRangeKernel"}),
      ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4d3S4, 0, 1, 01)",
                  "clSetKernelArg(kernel k_coarsed_g0S4d3S4, 1, 1, 02)",
                  "clSetKernelArg(kernel k_coarsed_g0S4d3S4, 2, 1, 03)",
                  "clSetKernelArg(kernel k_coarsed_g0S4d3S4, 3, 4, "
                  "0c 00 00 00)",
                  plainLaunch("k_coarsed_g0S4d3S4", "[4]")));
}

TEST(RecordedArguments, ReplaysTheEmptyFirstArgumentUntilItIsSet) {
  Application app;
  app.program.kernel("k", 2).kernel("k_coarsed_g0S4", 2);
  cl_kernel kernel = app.create("k");
  app.runtime.allowUnsetArguments();
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}), IsEmpty());

  app.set(kernel, 1, cl_char{2});
  app.runtime.forgetTranscript();
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 0, null)",
                          "clSetKernelArg(kernel k_coarsed_g0S4, 1, 1, 02)"));
}

TEST(RecordedArguments, TestsTheEmptyFirstArgumentUntilItIsSet) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S2", 1);
  cl_kernel kernel = app.create("k");
  app.runtime.allowUnsetArguments();
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  app.set(kernel, 0, cl_int{4});
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k", "[16]"),
                          plainLaunch("k_coarsed_g0S4d0S2", "[4]")));
}
