// Which programs, devices and kernels a profile is applied to.

#include "tests/behaviour/launch/WithProfile.h"

#include "tests/support/EnvGuard.h"
#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {
struct ProfiledProgram : WithProfile {
  /// Builds the program again, and makes a kernel of it.
  void rebuild(const char *options) {
    EXPECT_EQ(app->cl.clBuildProgram(app->program, 0, nullptr, options, nullptr,
                                     nullptr),
              CL_SUCCESS);
    kernel = app->cl.clCreateKernel(app->program, "k", nullptr);
    app->set(kernel, 0, cl_int{16});
  }
};
} // namespace

// By: printf 'source 5\n-DN=4kernel void k(int n) {}' | sha256sum
TEST_F(ProfiledProgram, IsTheOneWithTheSameOptionsAlsoWhenItIsBuiltAgain) {
  profile.programs = {"2803be5363dd8c32b1ae9647ac1c6c62"
                      "a2234a7b17ea6a1281a02aec8cedea79"};
  use(sizes(256), "g0S4");
  start();
  EXPECT_EQ(run({256}), "k") << "without options";
  for (int i = 0; i != 2; ++i) {
    rebuild("-DN=5");
    EXPECT_THAT(run({256}), testing::Not(HasSubstr("coarsed")));
    rebuild("-DN=4");
    EXPECT_THAT(run({256}), StartsWith("k_coarsed_g0S4"));
  }
}

TEST_F(ProfiledProgram, IsAskedForOnlyOnce) {
  use(sizes(256), "g0S4");
  start();
  run({256});
  kernel = app->create("k");
  app->set(kernel, 0, cl_int{16});
  EXPECT_THAT(run({256}), StartsWith("k_coarsed_g0S4"));
  EXPECT_EQ(run({512}), "k_coarsed_g0S4 2");
  EXPECT_THAT(app->runtime.transcript({"clGetDeviceInfo", "clGetProgramInfo",
                                       "clGetProgramBuildInfo"}),
              IsEmpty());
}

TEST_F(ProfiledProgram, IsNoneWhereTheRuntimeDoesNotSayWhatItIs) {
  use(sizes(256), "g0S4");
  for (const char *entry : {"clGetCommandQueueInfo", "clGetDeviceInfo",
                            "clGetProgramInfo", "clGetProgramBuildInfo"}) {
    start();
    app->runtime.answer(entry, CL_OUT_OF_RESOURCES);
    ErrorCapture capture;
    EXPECT_EQ(run({256}), "k") << entry;
    EXPECT_EQ(capture.text(), "");
    app.reset();
  }
}

TEST_F(ProfiledProgram, GoesByTheVariableAsItWasAtTheLoad) {
  use(sizes(256), "g0S4");
  start();
  const EnvGuard gone(variable::profile, nullptr);
  EXPECT_EQ(run({256}), "k_coarsed_g0S4");
}

TEST_F(ProfiledProgram, IsUnknownToTheSummaryWithoutAnIdentity) {
  use(sizes(256), "g0S4");
  start({"g0S4"}, {{variable::summary, "1"}});
  app->runtime.answer("clGetProgramInfo", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(run({256}), "k");
  ErrorCapture capture;
  app->agent.unload();
  EXPECT_EQ(capture.text(),
            "CV: 0 of 1 configurations ran a variant, in 0 of 1 "
            "launches; unknown to the profile: 1.\n");
}
