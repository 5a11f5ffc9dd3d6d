// Tests of the hidden last argument: how many work-groups were asked for.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;

namespace {
/// A kernel of one argument whose variant has one more.
struct HiddenArgument : Application {
  cl_kernel kernel;
  HiddenArgument() {
    program.kernel("k", 1).kernel("k_coarsed_g0S4", 2);
    kernel = create("k");
    set(kernel, 0, cl_char{7});
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    runtime.forgetTranscript();
  }
  std::vector<std::string> settings() const {
    return runtime.transcript({"clSetKernelArg"});
  }
};

// Twelve bytes of counts and four bytes of padding.
std::string groups(const std::string &counts) {
  return "clSetKernelArg(kernel k_coarsed_g0S4, 1, 16, " + counts +
         " 00 00 00 00)";
}
} // namespace

TEST(GroupCounts, AreTheLastArgumentOfAVariantThatHasMore) {
  HiddenArgument app;
  EXPECT_EQ(app.launch(app.kernel, {64, 6, 5}, {4, 3, 1}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(groups("10 00 00 00 02 00 00 00 05 00 00 00")));
}

TEST(GroupCounts, AreSetBeforeEveryLaunchOfTheVariant) {
  HiddenArgument app;
  EXPECT_EQ(app.launch(app.kernel, {64}, {4}), CL_SUCCESS);
  EXPECT_EQ(app.launch(app.kernel, {64}, {8}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(groups("10 00 00 00 00 00 00 00 00 00 00 00"),
                          groups("08 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST(GroupCounts, AreZeroWithoutALocalSize) {
  HiddenArgument app;
  EXPECT_EQ(app.launch(app.kernel, {64, 6}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(groups("00 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST(GroupCounts, AreOfTheApplicationsRangeAndRoundedDown) {
  HiddenArgument app;
  EXPECT_EQ(app.launch(app.kernel, {64, 7}, {16, 2}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(groups("04 00 00 00 03 00 00 00 00 00 00 00")));
}

TEST(GroupCounts, AreTheLowHalvesOfLargeCounts) {
  HiddenArgument app;
  const std::size_t large = (std::size_t{1} << 33) + 32;
  EXPECT_EQ(app.launch(app.kernel, {large}, {2}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre(groups("10 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST(GroupCounts, AreSetAfterTheApplicationsArguments) {
  HiddenArgument app;
  app.set(app.kernel, 0, cl_char{9});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {64}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.settings(),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 09)",
                          groups("10 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST(GroupCounts, AreNotGivenToAVariantWithAsManyArguments) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_char{7});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {64}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 07)"));
}

TEST(GroupCounts, AreNotGivenToAVariantWithFewerArguments) {
  Application app;
  app.program.kernel("k", 2).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_char{7});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {64}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 07)"));
}

TEST(GroupCounts, DoNotLookAtTheResultOfSettingThem) {
  HiddenArgument app;
  app.runtime.answer("clSetKernelArg", CL_INVALID_ARG_SIZE);
  EXPECT_EQ(app.launch(app.kernel, {64}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[16]", "[4]")));
}

// If the runtime does not tell how many arguments the variant has, it may lack
// the last one.
TEST(GroupCounts, LeaveTheLaunchToTheKernelWhenTheyMayBeMissing) {
  for (const std::size_t failing : {1, 2}) {
    Application app;
    app.program.kernel("k").kernel("k_coarsed_g0S4", 1);
    cl_kernel kernel = app.create("k");
    app.runtime.answer("clGetKernelInfo", CL_OUT_OF_RESOURCES, failing);
    ErrorCapture errors;
    EXPECT_EQ(app.launch(kernel, {64}, {4}), CL_SUCCESS);
    EXPECT_EQ(app.launch(kernel, {64}, {4}), CL_SUCCESS);
    EXPECT_THAT(app.launches(),
                ElementsAre(plainLaunch("k", "[64]", "[4]"),
                            plainLaunch("k_coarsed_g0S4", "[16]", "[4]")));
    EXPECT_EQ(errors.text(), "");
  }
}

TEST(GroupCounts, LeaveAVariantOutOfTheTuningWhenTheyMayBeMissing) {
  for (const std::size_t failing : {1, 2}) {
    TuningApplication app;
    app.program.kernel("k").kernel("k_coarsed_g0S4", 1);
    cl_kernel kernel = app.create("k");
    app.runtime.answer("clGetKernelInfo", CL_OUT_OF_RESOURCES, failing);
    ErrorCapture errors;
    EXPECT_EQ(app.launch(kernel, {64}, {4}), CL_SUCCESS);
    EXPECT_THAT(app.launches(), testing::SizeIs(1));
    EXPECT_EQ(app.log(),
              std::string(app.header) + "k,64,,,4,,,baseline,1.000\n");
    EXPECT_EQ(errors.text(), "");
  }
}

TEST(GroupCounts, AreTheVariantsInAutotuningModeToo) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {64, 2}, {4, 1}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 16, 10 00 "
                          "00 00 02 00 00 00 00 00 00 00 00 00 00 00)"));
}
