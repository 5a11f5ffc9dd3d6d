// Tests of what is told of versions, configurations and the whole.

#include "MadeOverview.h"

#include "results/overview/Reasons.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST(Overview, TellsWhatBecameOfEachVersion) {
  const Overview overview = overviewOf({eventfulRun()});
  EXPECT_EQ(versionIn(overview, "").verdict, Verdict::Original);
  EXPECT_EQ(versionIn(overview, "g0S2").verdict, Verdict::Winner);
  EXPECT_EQ(versionIn(overview, "g0S4").verdict, Verdict::NoDifference);
  EXPECT_EQ(versionIn(overview, "l0S2").verdict, Verdict::Different);
  EXPECT_EQ(versionIn(overview, "g0S16").verdict, Verdict::Refused);
  EXPECT_EQ(versionIn(overview, "c0S2").verdict, Verdict::NotRun);
  EXPECT_EQ(overview.configurations[0].outcome, Outcome::Faster);
}

TEST(Overview, GivesTheReasonWithItsValues) {
  const Overview overview = overviewOf({eventfulRun()});
  const OverviewConfiguration &configuration = overview.configurations[0];
  EXPECT_EQ(whyText(configuration, versionIn(overview, "")), "");
  EXPECT_THAT(whyText(configuration, versionIn(overview, "g0S2")),
              HasSubstr("2.00x (1.99x to 2.01x): the fastest"));
  EXPECT_EQ(whyText(configuration, versionIn(overview, "l0S2")),
            "wrong results: argument 2, element 17 is nan instead of 1.5");
  EXPECT_EQ(whyText(configuration, versionIn(overview, "g0S16")),
            "does not take these sizes: 1022 is not a multiple of 256");
  EXPECT_EQ(whyText(configuration, versionIn(overview, "c0S2")),
            "was not measured");
}

TEST(Overview, TellsAVersionThatIsFasterFromTheFastest) {
  const Overview overview =
      overviewOf({MadeRun()
                      .configuration("k", oneDimension(64))
                      .samples("", 100.0)
                      .samples("a", 50.0)
                      .samples("b", 20.0)
                      .samples("c", 150.0)
                      .samples("d", 900.0, 2)
                      .samples("e", 60.0, 1)});
  EXPECT_EQ(versionIn(overview, "a").verdict, Verdict::Faster);
  EXPECT_EQ(versionIn(overview, "c").verdict, Verdict::Slower);
  EXPECT_EQ(versionIn(overview, "d").verdict, Verdict::Dropped);
  EXPECT_EQ(versionIn(overview, "e").verdict, Verdict::TooFew);
}

TEST(Overview, GivesAReasonForEveryVerdict) {
  const auto why = [](const Overview &overview, const char *version) {
    return whyText(overview.configurations[0], versionIn(overview, version));
  };
  const Overview timed = overviewOf({MadeRun()
                                         .configuration("k", oneDimension(64))
                                         .samples("", 100.0)
                                         .samples("a", 50.0)
                                         .samples("b", 20.0)
                                         .samples("c", 150.0)
                                         .samples("d", 900.0, 2)
                                         .samples("e", 60.0, 1)
                                         .samples("f", 100.0)
                                         .decided()});
  EXPECT_THAT(why(timed, "a"), HasSubstr(": not the fastest"));
  EXPECT_THAT(why(timed, "b"), HasSubstr(": the fastest"));
  EXPECT_THAT(why(timed, "c"), HasSubstr(": slower"));
  EXPECT_EQ(why(timed, "d"), "0.11x: given up, its first two runs took more "
                             "than twice as long");
  EXPECT_EQ(why(timed, "e"), "1 sample is too few for a comparison");
  EXPECT_THAT(why(timed, "f"), HasSubstr(": no difference"));

  const Overview wrong = overviewOf({MadeRun()
                                         .configuration("k", oneDimension(64))
                                         .samples("", 100.0)
                                         .check("a", CheckResult::Different)});
  EXPECT_EQ(why(wrong, "a"),
            "wrong results: argument 0, element 0 is different");
  const Overview random = overviewOf({MadeRun()
                                          .configuration("k", oneDimension(64))
                                          .samples("", 100.0)
                                          .check("", CheckResult::Different)
                                          .samples("a", 50.0)});
  EXPECT_EQ(why(random, "a"), "cannot be checked: the original's own results "
                              "differ from run to run");
}

TEST(Overview, ComparesNothingWithAnOriginalThatDiffersFromItself) {
  const Overview overview =
      overviewOf({MadeRun()
                      .configuration("k", oneDimension(64))
                      .samples("", 100.0)
                      .check("", CheckResult::Different)
                      .samples("a", 50.0)});
  EXPECT_EQ(versionIn(overview, "a").verdict, Verdict::Repeatless);
  EXPECT_EQ(overview.configurations[0].winner, "");
  EXPECT_EQ(overview.configurations[0].outcome, Outcome::NothingToChoose);
}

TEST(Overview, TellsWhyNothingWasTuned) {
  RunRecord run = MadeRun().configuration("k", oneDimension(64));
  run.configurations[0].line.untunable = "it uses shared memory";
  const Overview overview = overviewOf({run});
  EXPECT_EQ(overview.configurations[0].outcome, Outcome::NotTuned);
  EXPECT_EQ(remarkOn(overview),
            "No launch could be tuned: it uses shared memory.");
  EXPECT_THAT(obstaclesIn(overview, 3),
              ElementsAre("k [64], 0 launches: not tuned: it uses shared "
                          "memory"));
}

TEST(Overview, TellsThatAllVariantsRefuseTheSizes) {
  RunRecord run = MadeRun().configuration("k", oneDimension(6));
  run.configurations[0].line.variants = {{"g0S4", "6 is not a multiple of 16"}};
  const Overview overview = overviewOf({run});
  EXPECT_EQ(overview.configurations[0].outcome, Outcome::NothingToChoose);
  EXPECT_EQ(whyText(overview.configurations[0]),
            "no variant can be used; g0S4: does not take these sizes: 6 is not "
            "a multiple of 16");
}

TEST(Overview, AddsUpKernelTimeAndWhatIsSaved) {
  MadeRun run;
  run.configuration("slow", oneDimension(64))
      .samples("", 100.0)
      .samples("a", 50.0);
  run.configuration("long", oneDimension(64)).samples("", 900.0);
  run.ended({{0, 10}, {1, 1}});
  const Overview overview = overviewOf({run});
  EXPECT_DOUBLE_EQ(overview.originalTime(), 1900.0);
  EXPECT_DOUBLE_EQ(overview.winningTime(), 1400.0);
  EXPECT_NEAR(overview.partSaved().value_or(0.0), 500.0 / 1900.0, 1e-9);
  EXPECT_EQ(overview.configurations[0].kernel, "slow");
  EXPECT_EQ(remarkOn(overview),
            "With the fastest versions the kernels take 1.40 ms instead of "
            "1.90 ms: 26 % less.");
}

TEST(Overview, CountsTheSamplesOfAllRunsTogether) {
  const RunRecord run =
      MadeRun().configuration("k", oneDimension(64)).samples("", 100.0, 3);
  const Overview overview = overviewOf({run, run});
  EXPECT_THAT(overview.runs, SizeIs(2));
  EXPECT_THAT(overview.configurations, SizeIs(1));
  EXPECT_THAT(versionIn(overview, "").samples, SizeIs(6));
}

TEST(Overview, HasOneTimeForASampleAndTheRunsThatRepeatIt) {
  RunRecord run =
      MadeRun().configuration("k", oneDimension(64)).samples("", 100.0, 2);
  SampleLine again{0, "", 400.0, false};
  again.repeats = 0;
  run.configurations[0].samples.push_back(again);
  EXPECT_THAT(versionIn(overviewOf({run}), "").samples, SizeIs(2));
}

TEST(Overview, KeepsDevicesAndProgramsApart) {
  const auto run = [](const char *driver, const char *hash) {
    return MadeRun(driver, hash)
        .configuration("k", oneDimension(64))
        .samples("", 100.0);
  };
  const Overview overview =
      overviewOf({run("1", "abc"), run("2", "abc"), run("1", "def")});
  EXPECT_THAT(overview.devices, SizeIs(2));
  EXPECT_THAT(overview.programs, SizeIs(2));
  EXPECT_THAT(overview.configurations, SizeIs(3));
}

TEST(Overview, HasOneTrueSentenceForNothing) {
  EXPECT_EQ(remarkOn(overviewOf({})),
            "There are no records of runs and no timing log.");
  EXPECT_EQ(remarkOn(overviewOf({RunRecord()})),
            "The records tell of no OpenCL program.");
  RunRecord run = MadeRun();
  EXPECT_EQ(remarkOn(overviewOf({run})),
            "No program had variants: there was nothing to choose from.");
  run.programs[0].whyNotGenerated = "it has no source";
  EXPECT_EQ(remarkOn(overviewOf({run})),
            "No program had variants: there was nothing to choose from; none "
            "were generated: it has no source.");
  run.programs[0].lookAlikes = {{"k_coarsed_g4", "an item lacks a number"}};
  EXPECT_EQ(remarkOn(overviewOf({run})),
            "No program had variants: there was nothing to choose from; "
            "k_coarsed_g4 looks like one and is not: an item lacks a number.");
  run.programs[0].kernels = {{"k", {"g0S4"}}};
  EXPECT_EQ(remarkOn(overviewOf({run})),
            "No kernel with variants was launched.");
  EXPECT_THAT(obstaclesIn(overviewOf({run}), 3), IsEmpty());
}

TEST(Overview, NamesTheLongestKernelsThatRunTheOriginal) {
  MadeRun run;
  run.configuration("a", oneDimension(64)).samples("", 10.0).samples("v", 10.0);
  run.configuration("b", oneDimension(64)).samples("", 30.0).samples("v", 30.0);
  run.configuration("c", oneDimension(64)).samples("", 20.0).samples("v", 1.0);
  run.ended({{0, 1}, {1, 1}, {2, 1}});
  const std::vector<std::string> lines = obstaclesIn(overviewOf({run}), 1);
  ASSERT_THAT(lines, SizeIs(1));
  EXPECT_THAT(
      lines[0],
      HasSubstr("b [64], 1 launch, 30.0 us: no variant is faster; v: "));
}
