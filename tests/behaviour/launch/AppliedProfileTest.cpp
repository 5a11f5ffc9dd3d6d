// What an application launches for which a profile was made.

#include "tests/behaviour/launch/MeasuredApplication.h"
#include "tests/behaviour/launch/WithProfile.h"

#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST_F(WithProfile, TheVariantIsLaunchedThatItNames) {
  for (const char *spec : {"g0S2", "g0S4", "g0S8"}) {
    profile.entries.clear();
    use(sizes(256), spec);
    start();
    EXPECT_EQ(run({256}), std::string("k_coarsed_") + spec);
    app.reset();
  }
}

TEST_F(WithProfile, EachSizeHasItsOwnVersion) {
  use(sizes(256), "g0S4");
  use(sizes(512), std::nullopt);
  use(sizes(1024), "g0S2");
  start();
  for (int i = 0; i != 2; ++i) {
    EXPECT_EQ(run({256}), "k_coarsed_g0S4");
    EXPECT_EQ(run({512}), "k");
    EXPECT_EQ(run({1024}), "k_coarsed_g0S2");
  }
}

TEST_F(WithProfile, AllObjectsOfAKernelUseTheSame) {
  use(sizes(256), "g0S8");
  start();
  EXPECT_EQ(run({256}), "k_coarsed_g0S8");
  kernel = app->create("k");
  app->set(kernel, 0, cl_int{16});
  EXPECT_EQ(run({256}), "k_coarsed_g0S8 2"); // the second of that name
}

TEST_F(WithProfile, SizesThatWereNotMeasuredRunTheVersionOfAllThatWere) {
  use(sizes(256), "g0S4");
  use(sizes(512), "g0S4");
  start();
  EXPECT_EQ(run({1024}), "k_coarsed_g0S4");
  EXPECT_EQ(run({1023}, {1}), "k"); // its conditions refuse
}

TEST_F(WithProfile, SizesThatWereNotMeasuredRunTheKernelWhereTheOthersDiffer) {
  use(sizes(256), "g0S4");
  use(sizes(512), "g0S2");
  start();
  EXPECT_EQ(run({1024}), "k");
  EXPECT_EQ(run({256}, {}), "k"); // the runtime chooses the work-group
}

TEST_F(WithProfile, TheKernelRunsWhereTheProgramHasLostTheVariant) {
  use(sizes(256), "g0S4");
  start({"g0S2", "g0S8"});
  EXPECT_EQ(run({256}), "k");
}

TEST_F(WithProfile, TheKernelRunsWhereAConditionRefusesTheArguments) {
  use(sizes(256), "g0S4d0S8");
  start({"g0S4d0S8", "g0S4"});
  EXPECT_EQ(run({256}), "k_coarsed_g0S4d0S8");
  app->set(kernel, 0, cl_int{12});
  ErrorCapture capture;
  EXPECT_EQ(run({256}), "k");
  EXPECT_EQ(capture.text(), "");
}

TEST_F(WithProfile, TheKernelRunsOfAnotherProgram) {
  use(sizes(256), "g0S4");
  profile.programs[0][0] = profile.programs[0][0] == '0' ? '1' : '0';
  start();
  EXPECT_EQ(run({256}), "k");
}

TEST_F(WithProfile, TheKernelRunsOnAnotherDevice) {
  use(sizes(256), "g0S4");
  profile.devices[0].name = "device 2";
  ErrorCapture capture;
  start();
  EXPECT_EQ(run({256}), "k");
  EXPECT_EQ(capture.text(), "");
}

TEST_F(WithProfile, TheKernelRunsWithAnotherDriverWhichIsSaidOnce) {
  use(sizes(256), "g0S4");
  profile.devices[0].driver = "0.9";
  ErrorCapture capture;
  start();
  EXPECT_EQ(run({256}), "k");
  EXPECT_EQ(run({512}), "k");
  EXPECT_EQ(capture.text(),
            "CV: " + folder.text() + "/profile.json" +
                " was made with another driver of a device: there kernels run "
                "as they are.\n");
}

TEST_F(WithProfile, ALaunchWithAnOffsetRunsTheKernel) {
  use(sizes(256), "g0S4");
  start();
  const std::size_t offset = 64, global = 256, local = 4;
  app->runtime.forgetTranscript();
  EXPECT_EQ(app->cl.clEnqueueNDRangeKernel(app->runtime.queue(), kernel, 1,
                                           &offset, &global, &local, 0, nullptr,
                                           nullptr),
            CL_SUCCESS);
  EXPECT_THAT(app->launches(), ElementsAre(HasSubstr("kernel k,")));
}

TEST_F(WithProfile, ALaunchWithoutSizesIsLeftToTheRuntime) {
  use(sizes(256), "g0S4");
  start();
  ErrorCapture capture;
  app->runtime.forgetTranscript();
  (void)app->cl.clEnqueueNDRangeKernel(app->runtime.queue(), kernel, 1, nullptr,
                                       nullptr, nullptr, 0, nullptr, nullptr);
  EXPECT_THAT(app->launches(), ElementsAre(HasSubstr("kernel k,")));
}

TEST_F(WithProfile, AFileThatCannotBeUsedLeavesKernelsAsTheyAre) {
  for (const char *broken : {"{", "\x1b[2J", "{\"format\":\"other\"}"}) {
    text = broken;
    ErrorCapture capture;
    start();
    EXPECT_EQ(run({256}), "k");
    const std::string said = capture.text();
    EXPECT_THAT(said,
                AllOf(StartsWith("CV: " + folder.text() + "/profile.json" +
                                 " cannot be used as a profile: "),
                      EndsWith(". Kernels run as they are.\n")));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(said.find('\x1b'), std::string::npos);
    app.reset();
  }
}

TEST_F(WithProfile, AFileThatIsNotThereIsSaid) {
  ErrorCapture capture;
  Application other({{variable::profile, folder.file("missing.json")}});
  EXPECT_THAT(capture.text(), HasSubstr("missing.json cannot be used as a "
                                        "profile: it cannot be opened"));
}

TEST_F(WithProfile, IsNotReadWhereTheProcessAutotunes) {
  use(sizes(256), std::nullopt);
  ErrorCapture capture;
  start({"g0S4"}, {{variable::autotune, folder.text()}});
  EXPECT_THAT(
      capture.text(),
      HasSubstr("CV: CORVANE_AUTOTUNE is set, so CORVANE_PROFILE does not "
                "count.\n"));
}

TEST_F(WithProfile, TheSummaryCountsConfigurationsAndLaunches) {
  use(sizes(256), "g0S4");
  use(sizes(512), std::nullopt);
  start({"g0S4"}, {{variable::summary, "1"}});
  for (int i = 0; i != 3; ++i)
    run({256});
  run({512});
  run({1024}, {8});
  ErrorCapture capture;
  app->agent.unload();
  EXPECT_EQ(capture.text(),
            "CV: 1 of 3 configurations ran a variant, in 3 of 5 launches; "
            "unknown to the profile: 1.\n");
}

TEST_F(WithProfile, NoSummaryIsGivenUnlessItIsAskedFor) {
  use(sizes(256), "g0S4");
  start({"g0S4"}, {{variable::summary, ""}});
  run({256});
  ErrorCapture capture;
  app->agent.unload();
  EXPECT_EQ(capture.text(), "");
}

// By: printf 'source 0\nkernel void k(global uchar *in, global uchar *out) {}'
// | sha256sum
TEST_F(WithProfile, OnlyWhatItDoesNotKnowIsTuned) {
  profile.programs = {"49098ea6e67c457341c0e657c6dc75c6"
                      "b8ef3c4211b7e30ff73f35b87db36dad"};
  use(sizes(64), "g0S4");
  folder.write("profile.json", profileText(profile));
  MeasuredApplication tuned({{variable::profile, folder.text()}});
  for (const char *spec : {"g0S2", "g0S4"}) {
    tuned.addVariant(spec, square);
    tuned.runtime.takes(std::string("k_coarsed_") + spec, {1000});
  }
  tuned.start();
  EXPECT_EQ(tuned.kernelOfNextRun(64), "k_coarsed_g0S4");
  EXPECT_EQ(tuned.kernelOfNextRun(64), "k_coarsed_g0S4");
  EXPECT_EQ(tuned.untunable(), "the profile has decided already");
  EXPECT_THAT(tuned.configuration().samples, IsEmpty());
  tuned.clearOutput();
  EXPECT_EQ(tuned.run(128), CL_COMPLETE);
  EXPECT_TRUE(tuned.configuration(1).decision);
}
