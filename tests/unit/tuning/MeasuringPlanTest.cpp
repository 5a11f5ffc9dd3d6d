// Tests of the order in which the versions of a kernel are measured.

#include "tuning/MeasuringPlan.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

using namespace corvane;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

namespace {
/// Does what a plan asks for, with the times and outcomes that a test has set.
/// What is not set succeeds.
struct Play {
  std::vector<double> microseconds;
  std::function<Equality(const PlannedRun &)> equality =
      [](const PlannedRun &) { return Equality::Equal; };
  std::function<bool(const PlannedRun &)> hasTime = [](const PlannedRun &) {
    return true;
  };
  std::function<bool(const PlannedRun &)> works = [](const PlannedRun &) {
    return true;
  };

  /// The runs as text: the version, then w for a warm-up, r for the reference,
  /// c if the output was compared.
  std::vector<std::string> through(MeasuringPlan &plan) const {
    std::vector<std::string> runs;
    while (const auto run = plan.next()) {
      std::string text = std::to_string(run->version);
      if (run->purpose == PlannedRun::Purpose::Reference)
        text += "r";
      if (run->purpose == PlannedRun::Purpose::WarmUp)
        text += "w";
      runs.push_back(text + (run->compared ? "c" : ""));
      if (!works(*run)) {
        plan.failed(*run);
        continue;
      }
      plan.completed(*run, hasTime(*run)
                               ? std::optional(microseconds[run->version])
                               : std::nullopt);
      if (run->compared)
        plan.compared(*run, equality(*run));
      if (runs.size() > 1000)
        break;
    }
    return runs;
  }
};
} // namespace

TEST(MeasuringPlan, RunsRotatingRoundsAfterReferenceAndWarmUps) {
  MeasuringPlan plan(2, 3, true);
  EXPECT_THAT((Play{{5, 4, 3}}).through(plan),
              ElementsAre("0r", "1wc", "2wc", "0wc", //
                          "0", "1", "2",             //
                          "1", "2", "0",             //
                          "2c", "0c", "1c"));
  EXPECT_THAT(plan.samples(0), ElementsAre(5, 5, 5));
  EXPECT_THAT(plan.samples(2), ElementsAre(3, 3, 3));
}

TEST(MeasuringPlan, ComparesNothingWithoutVerification) {
  MeasuringPlan plan(1, 2, false);
  EXPECT_THAT((Play{{5, 4}}).through(plan),
              ElementsAre("0r", "1w", "0w", "0", "1", "1", "0"));
}

TEST(MeasuringPlan, RunsAVersionThatDiffersNeverAgain) {
  MeasuringPlan plan(2, 2, true);
  Play play{{5, 4, 3}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 1 ? Equality::Different : Equality::Equal;
  };
  EXPECT_THAT(play.through(plan),
              ElementsAre("0r", "1wc", "2wc", "0wc", "0", "2", "2c", "0c"));
  EXPECT_EQ(plan.fate(1), VersionFate::Different);
  EXPECT_EQ(plan.fate(2), VersionFate::Measured);
}

TEST(MeasuringPlan, EndsWhenTheOriginalDoesNotRepeatItself) {
  MeasuringPlan plan(1, 2, true);
  Play play{{5, 4}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 0 ? Equality::Different : Equality::Equal;
  };
  EXPECT_THAT(play.through(plan), ElementsAre("0r", "1wc", "0wc"));
  EXPECT_FALSE(plan.isReproducible());
}

TEST(MeasuringPlan, SeesAnOutputThatDiffersAtTheLastRunOnly) {
  MeasuringPlan plan(1, 2, true);
  Play play{{5, 4}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 1 && run.purpose == PlannedRun::Purpose::Sample
               ? Equality::Different
               : Equality::Equal;
  };
  play.through(plan);
  EXPECT_EQ(plan.fate(1), VersionFate::Different);
}

TEST(MeasuringPlan, DropsAVersionAfterTwoSamplesOfTwiceTheTime) {
  MeasuringPlan plan(2, 5, true);
  (Play{{5, 10.5, 9.5}}).through(plan);
  EXPECT_EQ(plan.fate(1), VersionFate::Slow);
  EXPECT_THAT(plan.samples(1), SizeIs(2));
  EXPECT_EQ(plan.fate(2), VersionFate::Measured);
  EXPECT_THAT(plan.samples(2), SizeIs(5));
}

TEST(MeasuringPlan, ComparesTheOriginalWithItselfAfterTheLastCandidate) {
  MeasuringPlan plan(1, 5, true);
  Play play{{5, 4}};
  play.works = [](const PlannedRun &run) { return run.version == 0; };
  EXPECT_THAT(play.through(plan), ElementsAre("0r", "1wc", "0wc"));
  EXPECT_EQ(plan.fate(1), VersionFate::Failed);
}

TEST(MeasuringPlan, RepeatsRunsWithoutATimeButNotForEver) {
  MeasuringPlan plan(1, 3, false);
  Play play{{5, 4}};
  play.hasTime = [count = 0](const PlannedRun &run) mutable {
    return run.version != 1 || ++count > 3;
  };
  play.through(plan);
  EXPECT_THAT(plan.samples(1), SizeIs(3));

  MeasuringPlan hopeless(1, 3, false);
  play.hasTime = [](const PlannedRun &run) { return run.version != 1; };
  EXPECT_THAT(play.through(hopeless), SizeIs(3 + 3 + 6));
  EXPECT_THAT(hopeless.samples(1), SizeIs(0));
}

TEST(MeasuringPlan, HasNothingToRunWithoutCandidates) {
  MeasuringPlan plan(0, 7, true);
  EXPECT_FALSE(plan.next());
}

TEST(MeasuringPlan, RemembersThatAnOutputWasOnlyWithinTheBound) {
  MeasuringPlan plan(2, 2, true);
  Play play{{5, 4, 3}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 2 ? Equality::WithinBound : Equality::Equal;
  };
  play.through(plan);
  EXPECT_TRUE(plan.alwaysEqual(1));
  EXPECT_FALSE(plan.alwaysEqual(2));
  EXPECT_EQ(plan.fate(2), VersionFate::Measured);
}
