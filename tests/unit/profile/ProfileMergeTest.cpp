// Tests of the profile that several runs make together.

#include "results/profile/ProfileMerge.h"

#include "tests/unit/Runs.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

static const LaunchSizes sizes = oneDimension(1024, 64);

// The only configuration that the runs have, after merging.
static TunedConfiguration merged(std::vector<RunRecord> runs) {
  std::vector<TunedConfiguration> tuned = mergeRuns(runs);
  EXPECT_THAT(tuned, SizeIs(1));
  return tuned.at(0);
}

static Agreement checkOf(const TunedConfiguration &tuned,
                         const std::string &name) {
  for (const TunedVersion &version : tuned.versions)
    if (version.figures.version == name)
      return version.check;
  ADD_FAILURE() << "there is no version " << name;
  return Agreement::Unknown;
}

TEST(MergeRuns, FindsTheWinnerOfOneRun) {
  const TunedConfiguration tuned =
      merged({MadeRun()
                  .configuration("k", sizes)
                  .warmUp("g0S4", 1)
                  .samples("", 100)
                  .samples("g0S4", 50)
                  .samples("g0S2", 70)
                  .checks("g0S4", CheckResult::Equal)});
  EXPECT_TRUE(tuned.decided);
  EXPECT_EQ(tuned.winner, "g0S4");
  EXPECT_EQ(tuned.kernel, "k");
  ASSERT_THAT(tuned.versions, SizeIs(3));
  EXPECT_EQ(tuned.versions[0].figures.version, "");
  EXPECT_EQ(tuned.versions[1].figures.version, "g0S4");
  EXPECT_EQ(tuned.versions[1].figures.samples, 7U);
  EXPECT_EQ(tuned.versions[2].figures.version, "g0S2");
  EXPECT_EQ(checkOf(tuned, "g0S4"), Agreement::Equal);
  EXPECT_EQ(checkOf(tuned, "g0S2"), Agreement::Unknown);
  EXPECT_NEAR(tuned.bestInterval()->high, 0.5, 0.01);
}

TEST(MergeRuns, CountsTheSamplesOfAllRunsForOneKey) {
  const RunRecord half = MadeRun()
                             .configuration("k", sizes)
                             .samples("", 100, 3)
                             .samples("g0S4", 50, 3);
  EXPECT_FALSE(merged({half}).decided);
  const TunedConfiguration tuned = merged({half, half});
  EXPECT_TRUE(tuned.decided);
  EXPECT_EQ(tuned.winner, "g0S4");
  EXPECT_EQ(tuned.versions[0].figures.samples, 6U);
}

TEST(MergeRuns, KeepsOtherDriversProgramsAndSizesApart) {
  const auto run = [](const char *driver, const char *hash,
                      const LaunchSizes &of) -> RunRecord {
    return MadeRun(driver, hash)
        .configuration("k", of)
        .samples("", 100)
        .samples("g0S4", 50);
  };
  const std::vector<TunedConfiguration> tuned = mergeRuns(
      {run("2", "abc", sizes), run("1", "def", sizes), run("1", "abc", sizes),
       run("1", "abc", oneDimension(1024)), run("1", "abc", sizes)});
  ASSERT_THAT(tuned, SizeIs(4));
  EXPECT_EQ(tuned[0].sizes, oneDimension(1024));
  EXPECT_EQ(tuned[1].versions[0].figures.samples, 14U);
  EXPECT_EQ(tuned[2].program, "def");
  EXPECT_EQ(tuned[3].device.driver, "2");
}

TEST(MergeRuns, TakesAVariantOutThatIsDifferentAnywhere) {
  const RunRecord good = MadeRun()
                             .configuration("k", sizes)
                             .samples("", 100)
                             .samples("g0S4", 50)
                             .samples("g0S2", 70)
                             .checks("g0S4", CheckResult::Equal);
  // The bad check is from another device and for other sizes.
  const RunRecord bad = MadeRun("2")
                            .configuration("k", oneDimension(7))
                            .check("g0S4", CheckResult::Different);
  for (const std::vector<RunRecord> &runs :
       {std::vector<RunRecord>{good, bad}, {bad, good}}) {
    const std::vector<TunedConfiguration> tuned = mergeRuns(runs);
    ASSERT_THAT(tuned, SizeIs(2));
    EXPECT_EQ(tuned[0].winner, "g0S2");
    EXPECT_EQ(checkOf(tuned[0], "g0S4"), Agreement::Different);
  }
}

TEST(MergeRuns, AllowsWhatTheLatestRunAllows) {
  const auto run = [](const char *start, const char *verify,
                      CheckResult found) -> RunRecord {
    return MadeRun()
        .verified(start, verify)
        .configuration("k", sizes)
        .samples("", 100)
        .samples("g0S4", 50)
        .checks("g0S4", found);
  };
  const auto strict = [&](const char *start) {
    return run(start, "exact", CheckResult::Different);
  };
  const auto loose = [&](const char *start) {
    return run(start, "1e-5", CheckResult::WithinBound);
  };
  const auto off = run("2024-01-03T00:00:00Z", "off", CheckResult::Equal);
  const char *const first = "2024-01-01T00:00:00Z";
  const char *const second = "2024-01-02T00:00:00Z";
  EXPECT_EQ(merged({strict(first), loose(second)}).winner, "g0S4");
  EXPECT_EQ(checkOf(merged({strict(first), loose(second)}), "g0S4"),
            Agreement::WithinBound);
  EXPECT_EQ(merged({loose(first), strict(second)}).winner, "");
  EXPECT_EQ(merged({strict(first), off}).winner, "");
  // Not a bound: the library asks for equal results then.
  const auto odd = run(second, "5", CheckResult::Equal);
  EXPECT_EQ(merged({strict(first), odd}).winner, "");
  const RunRecord wrong = run(first, "1e-5", CheckResult::Different);
  EXPECT_EQ(merged({wrong, loose(second)}).winner, "");
}

TEST(MergeRuns, ChoosesNothingWhereOnlyAStricterRunLooked) {
  const RunRecord strict = MadeRun()
                               .verified("2024-01-01T00:00:00Z", "exact")
                               .configuration("k", sizes)
                               .accepts("g0S4")
                               .samples("", 100)
                               .samples("g0S4", 50)
                               .check("g0S4", CheckResult::Different)
                               .decided();
  const RunRecord loose = MadeRun()
                              .verified("2024-01-02T00:00:00Z", "1e-5")
                              .configuration("k", oneDimension(7))
                              .samples("", 100)
                              .samples("g0S4", 50)
                              .checks("g0S4", CheckResult::WithinBound);
  for (const TunedConfiguration &tuned : mergeRuns({strict, loose})) {
    const bool wasAllowed = tuned.sizes == oneDimension(7);
    EXPECT_EQ(tuned.decided, wasAllowed);
    EXPECT_EQ(tuned.winner, wasAllowed ? "g0S4" : "");
  }
}

TEST(MergeRuns, LeavesTheVariantsOfOtherProgramsAndKernelsIn) {
  const std::vector<TunedConfiguration> tuned =
      mergeRuns({MadeRun("1", "abc")
                     .configuration("k", sizes)
                     .samples("", 100)
                     .samples("g0S4", 50),
                 MadeRun("1", "def")
                     .configuration("k", sizes)
                     .check("g0S4", CheckResult::Different),
                 MadeRun("1", "abc")
                     .configuration("other", sizes)
                     .check("g0S4", CheckResult::Different)});
  EXPECT_EQ(tuned[0].winner, "g0S4");
}

TEST(MergeRuns, ChoosesNoVariantOfAKernelThatDiffersFromItself) {
  const std::vector<TunedConfiguration> tuned =
      mergeRuns({MadeRun()
                     .configuration("k", sizes)
                     .samples("", 100)
                     .samples("g0S4", 50)
                     .checks("g0S4", CheckResult::Equal)
                     .configuration("k", oneDimension(7))
                     .check("", CheckResult::Different)});
  ASSERT_THAT(tuned, SizeIs(2));
  EXPECT_TRUE(tuned[1].decided);
  EXPECT_EQ(tuned[1].winner, "");
  EXPECT_EQ(checkOf(tuned[1], ""), Agreement::Different);
}

TEST(MergeRuns, TellsTheWorstCheck) {
  const TunedConfiguration tuned =
      merged({MadeRun()
                  .configuration("k", sizes)
                  .check("g0S4", CheckResult::WithinBound)
                  .check("g0S4", CheckResult::Equal)});
  EXPECT_EQ(checkOf(tuned, "g0S4"), Agreement::WithinBound);
  EXPECT_FALSE(tuned.decided);
}

TEST(MergeRuns, TakesAProcessAtItsWordThatItHasDecided) {
  const TunedConfiguration tuned = merged({MadeRun()
                                               .configuration("k", sizes)
                                               .samples("", 100, 2)
                                               .samples("g0S4", 50, 2)
                                               .decided()});
  EXPECT_TRUE(tuned.decided);
  EXPECT_EQ(tuned.winner, "");
}

TEST(MergeRuns, MakesOneTimeOfTheRunsOfASample) {
  const TunedConfiguration tuned = merged({MadeRun()
                                               .configuration("k", sizes)
                                               .samples("", 100)
                                               .samples("g0S4", 200)
                                               .repeats("", 100)
                                               .repeats("g0S4", 50)
                                               .repeats("", 100)
                                               .repeats("g0S4", 50)});
  EXPECT_EQ(tuned.winner, "g0S4");
  EXPECT_EQ(tuned.versions[1].figures.samples, 7U);
  EXPECT_DOUBLE_EQ(tuned.versions[1].figures.median, 50.0);
}

// The original was repeated while the machine was busy, the variant was not.
TEST(MergeRuns, ComparesAVariantWithTheOriginalInTheSamePasses) {
  const TunedConfiguration tuned = merged({MadeRun()
                                               .configuration("k", sizes)
                                               .samples("", 100)
                                               .samples("g0S4", 100)
                                               .repeats("", 300)
                                               .repeats("", 300)});
  EXPECT_TRUE(tuned.decided);
  EXPECT_EQ(tuned.winner, "");
  EXPECT_GT(tuned.versions[0].figures.median, 150.0);
}

TEST(MergeRuns, ComparesAVariantWithTheOriginalOfTheSameRuns) {
  const RunRecord busy =
      MadeRun().configuration("k", sizes).samples("", 300, 30);
  const RunRecord quiet =
      MadeRun().configuration("k", sizes).samples("", 100).samples("g0S4", 100);
  EXPECT_EQ(merged({busy, quiet}).winner, "");
  EXPECT_EQ(merged({busy, quiet}).versions[0].figures.samples, 37U);
}

TEST(MergeRuns, TellsTheIntervalOfTheWinnerThoughAnotherVersionTookLessTime) {
  const RunRecord busy =
      MadeRun().configuration("k", sizes).samples("", 300).samples("g0S4", 200);
  const RunRecord quiet =
      MadeRun().configuration("k", sizes).samples("", 100).samples("g0S2", 100);
  const TunedConfiguration tuned = merged({busy, quiet});
  EXPECT_EQ(tuned.winner, "g0S4");
  EXPECT_NEAR(tuned.bestInterval()->high, 0.67, 0.02);
}

// As when the process is killed, or its time for tuning is spent, before the
// last run.
TEST(MergeRuns, ChoosesNoVariantThatWasComparedOnlyOnce) {
  const RunRecord once = MadeRun()
                             .configuration("k", sizes)
                             .samples("", 100)
                             .samples("g0S4", 50)
                             .check("g0S4", CheckResult::Equal);
  EXPECT_FALSE(merged({once}).decided);
  EXPECT_EQ(merged({once}).winner, "");
  EXPECT_TRUE(makeProfile(mergeRuns({once})).entries.empty());
  EXPECT_EQ(merged({once, once}).winner, "");
  const RunRecord twice = MadeRun()
                              .configuration("k", sizes)
                              .samples("", 100)
                              .samples("g0S4", 50)
                              .checks("g0S4", CheckResult::Equal);
  EXPECT_EQ(merged({once, twice}).winner, "g0S4");
}

// As when a first run is killed after its first round, and a second is not.
TEST(MergeRuns, KeepsAWinnerWhateverARunThatEndedEarlyLeft) {
  const RunRecord early = MadeRun()
                              .configuration("k", sizes)
                              .samples("", 100, 1)
                              .samples("g0S4", 50, 1)
                              .samples("g0S8", 300, 1)
                              .samples("g0S16", 300, 1);
  const RunRecord whole = MadeRun()
                              .configuration("k", sizes)
                              .samples("", 100)
                              .samples("g0S4", 50)
                              .samples("g0S8", 300, 2)
                              .checks("g0S4", CheckResult::Equal)
                              .decided();
  const TunedConfiguration tuned = merged({early, whole});
  EXPECT_TRUE(tuned.decided);
  EXPECT_EQ(tuned.winner, "g0S4");
}

TEST(MergeRuns, WaitsForAVersionThatWasNeverRun) {
  const RunRecord early =
      MadeRun().configuration("k", sizes).accepts("g0S2").samples("", 100, 7);
  EXPECT_FALSE(merged({early}).decided);
  EXPECT_TRUE(makeProfile(mergeRuns({early})).entries.empty());
}

TEST(MergeRuns, DoesNotCountARepeatedSampleThatIsNotThere) {
  MadeRun run;
  run.configuration("k", sizes).samples("", 100).samples("g0S2", 300);
  const RunRecord stray =
      MadeRun().configuration("k", sizes).repeats("g0S2", 1);
  const TunedConfiguration tuned = merged({run, stray});
  EXPECT_EQ(tuned.winner, "");
  EXPECT_EQ(tuned.versions[1].figures.median, 300.0);
}

TEST(MergeRuns, CountsLaunches) {
  const RunRecord whole = MadeRun()
                              .configuration("a", sizes)
                              .samples("", 100, 5)
                              .configuration("k", sizes)
                              .samples("", 100, 5)
                              .ended({{0, 40}, {1, 2}, {1, 3}, {9, 1}});
  const RunRecord killed = MadeRun()
                               .configuration("k", sizes)
                               .warmUp("", 100)
                               .samples("", 100, 5)
                               .samples("g0S4", 100, 4)
                               .configuration("b", sizes);
  const std::vector<TunedConfiguration> tuned = mergeRuns({whole, killed});
  ASSERT_THAT(tuned, SizeIs(3));
  EXPECT_EQ(tuned[0].launches, 40U);
  EXPECT_EQ(tuned[1].launches, 0U) << "it was killed before it measured";
  EXPECT_EQ(tuned[2].launches, 5U + 1U);
}

TEST(MergeRuns, HasNothingToSayOfNothing) {
  EXPECT_THAT(mergeRuns({}), IsEmpty());
  EXPECT_THAT(mergeRuns({MadeRun()}), IsEmpty());
}

TEST(MakeProfile, HasEntriesForWhatIsDecided) {
  const Profile profile =
      makeProfile(mergeRuns({MadeRun()
                                 .configuration("a", sizes)
                                 .samples("", 100)
                                 .samples("g0S4", 100)
                                 .configuration("b", sizes)
                                 .samples("", 100, 2)
                                 .samples("g0S4", 50, 2)
                                 .configuration("c", sizes)
                                 .samples("", 100)
                                 .samples("g0S4", 50),
                             MadeRun("2", "def")
                                 .configuration("d", sizes)
                                 .samples("", 100)
                                 .samples("l0S4", 50)
                                 .checks("l0S4", CheckResult::WithinBound)}));
  ASSERT_THAT(profile.entries, SizeIs(3));
  EXPECT_EQ(profile.entries[0].kernel, "a");
  EXPECT_EQ(profile.entries[0].use, std::nullopt);
  EXPECT_EQ(profile.entries[1].kernel, "c");
  EXPECT_EQ(profile.entries[1].use, "g0S4");
  EXPECT_EQ(profile.entries[1].device, 0U);
  EXPECT_EQ(profile.entries[2].use, "l0S4");
  EXPECT_EQ(profile.entries[2].device, 1U);
  EXPECT_EQ(profile.entries[2].program, 1U);
  EXPECT_EQ(profile.entries[2].versions.at("l0S4").check,
            Agreement::WithinBound);
  EXPECT_THAT(profile.programs, ElementsAre("abc", "def"));
  EXPECT_THAT(profile.devices, SizeIs(2));
}
