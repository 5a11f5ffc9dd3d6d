// Tests of calls that the agent must not make to the runtime.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;

TEST(QuietCalls, SettingAnArgumentIsOneCall) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1).kernel("plain", 1);
  cl_kernel kernel = app.create("k");
  cl_kernel plain = app.create("plain");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.set(kernel, 0, cl_int{1}), CL_SUCCESS);
  EXPECT_EQ(app.set(plain, 0, cl_int{2}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre("clSetKernelArg(kernel k, 0, 4, 01 00 00 00)",
                          "clSetKernelArg(kernel plain, 0, 4, 02 00 00 00)"));
}

TEST(QuietCalls, ALaunchWithoutAnAcceptingVariantIsOneCall) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1).kernel("plain");
  cl_kernel kernel = app.create("k");
  cl_kernel plain = app.create("plain");
  app.set(kernel, 0, cl_int{1});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {15}), CL_SUCCESS);
  EXPECT_EQ(app.launch(plain, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript(),
      ElementsAre(plainLaunch("k", "[15]"), plainLaunch("plain", "[16]")));
}

TEST(QuietCalls, ALaunchWhoseArgumentsAreRejectedIsOneCall) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{1});
  app.runtime.forgetTranscript();
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript(), ElementsAre(plainLaunch("k", "[16]")));
}

TEST(QuietCalls, AVariantCostsTwoQueriesItsArgumentsAndTheHiddenOne) {
  Application app;
  app.program.kernel("k", 2).kernel("k_coarsed_g0S4", 3);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_char{1});
  app.set(kernel, 1, cl_char{2});
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript(),
      testing::UnorderedElementsAre(
          "clGetKernelInfo(kernel k, CL_KERNEL_NUM_ARGS, 4, &, null)",
          "clGetKernelInfo(kernel k_coarsed_g0S4, CL_KERNEL_NUM_ARGS, 4, &, "
          "null)",
          "clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 01)",
          "clSetKernelArg(kernel k_coarsed_g0S4, 1, 1, 02)",
          "clSetKernelArg(kernel k_coarsed_g0S4, 2, 16, 00 00 00 00 00 00 00 "
          "00 00 00 00 00 00 00 00 00)",
          plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(QuietCalls, AVariantThatIsUpToDateCostsTwoQueries) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_char{1});
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(
      app.runtime.transcript(),
      ElementsAre("clGetKernelInfo(kernel k, CL_KERNEL_NUM_ARGS, 4, &, null)",
                  "clGetKernelInfo(kernel k_coarsed_g0S4, CL_KERNEL_NUM_ARGS, "
                  "4, &, null)",
                  plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(QuietCalls, AVariantGetsEachArgumentOnceHoweverOftenItWasSet) {
  Application app;
  app.program.kernel("k", 2).kernel("k_coarsed_g0S4", 2);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 1, cl_char{9});
  for (cl_char value = 1; value != 4; ++value)
    app.set(kernel, 0, value);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 03)",
                          "clSetKernelArg(kernel k_coarsed_g0S4, 1, 1, 09)"));
}
