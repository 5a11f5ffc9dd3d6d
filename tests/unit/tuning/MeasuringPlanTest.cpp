// Tests of the order in which the versions of a kernel are measured.

#include "tuning/MeasuringPlan.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>

using namespace corvane;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

// The names of the original and of so many candidates.
static std::vector<std::string> versions(unsigned candidates) {
  std::vector<std::string> names(1);
  for (unsigned i = 1; i <= candidates; ++i)
    names.push_back("g0S" + std::to_string(i));
  return names;
}

namespace {
/// Does what a plan asks for, with the times and outcomes that a test has set.
/// What is not set succeeds.
struct Play {
  std::vector<double> microseconds;
  /// How long each run takes with all that comes with it.
  std::chrono::seconds each{0};
  /// By what the time of a run is multiplied.
  std::function<double(const PlannedRun &)> disturbance =
      [](const PlannedRun &) { return 1.0; };
  std::function<Equality(const PlannedRun &)> equality =
      [](const PlannedRun &) { return Equality::Equal; };
  std::function<bool(const PlannedRun &)> hasTime = [](const PlannedRun &) {
    return true;
  };
  std::function<bool(const PlannedRun &)> works = [](const PlannedRun &) {
    return true;
  };

  /// The runs as text: the version, then w for a warm-up, r for the reference,
  /// c if the output was compared, + if the run repeats a sample.
  std::vector<std::string> through(MeasuringPlan &plan) const {
    std::vector<std::string> runs;
    while (const auto run = plan.next()) {
      std::string text = std::to_string(run->version);
      if (run->purpose == PlannedRun::Purpose::Reference)
        text += "r";
      if (run->purpose == PlannedRun::Purpose::WarmUp)
        text += "w";
      if (run->repeats)
        text += "+";
      runs.push_back(text + (run->compared ? "c" : ""));
      if (!works(*run)) {
        plan.failed(*run);
        continue;
      }
      plan.completed(*run, hasTime(*run)
                               ? std::optional(microseconds[run->version] *
                                               disturbance(*run))
                               : std::nullopt);
      if (run->compared)
        plan.compared(*run, equality(*run));
      plan.took(runs.size() * each);
      if (runs.size() > 10000)
        break;
    }
    return runs;
  }
};
} // namespace

TEST(MeasuringPlan, RunsRotatingRoundsAfterReferenceAndWarmUps) {
  MeasuringPlan plan(versions(2), 3, true);
  EXPECT_THAT((Play{{5, 4, 3}}).through(plan),
              ElementsAre("0r", "1wc", "2wc", "0wc", //
                          "0", "1", "2",             //
                          "1", "2", "0",             //
                          "2c", "0c", "1c"));
  EXPECT_THAT(plan.samples(0), ElementsAre(5, 5, 5));
  EXPECT_THAT(plan.samples(2), ElementsAre(3, 3, 3));
}

TEST(MeasuringPlan, ComparesNothingWithoutVerification) {
  MeasuringPlan plan(versions(1), 2, false);
  EXPECT_THAT((Play{{5, 4}}).through(plan),
              ElementsAre("0r", "1w", "0w", "0", "1", "1", "0"));
}

TEST(MeasuringPlan, RunsAVersionThatDiffersNeverAgain) {
  MeasuringPlan plan(versions(2), 2, true);
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
  MeasuringPlan plan(versions(1), 2, true);
  Play play{{5, 4}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 0 ? Equality::Different : Equality::Equal;
  };
  EXPECT_THAT(play.through(plan), ElementsAre("0r", "1wc", "0wc"));
  EXPECT_FALSE(plan.isReproducible());
}

TEST(MeasuringPlan, SeesAnOutputThatDiffersAtTheLastRunOnly) {
  MeasuringPlan plan(versions(1), 2, true);
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
  MeasuringPlan plan(versions(2), 5, true);
  (Play{{5, 10.5, 9.5}}).through(plan);
  EXPECT_EQ(plan.fate(1), VersionFate::Slow);
  EXPECT_THAT(plan.samples(1), SizeIs(2));
  EXPECT_EQ(plan.fate(2), VersionFate::Measured);
  EXPECT_THAT(plan.samples(2), SizeIs(5));
}

// The machine was busy from the second run on.
TEST(MeasuringPlan, DropsNoVersionByOneSampleOfTheOriginal) {
  MeasuringPlan plan(versions(1), 5, false);
  Play play{{5, 4}};
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    return run.purpose == PlannedRun::Purpose::Sample && ++count > 1 ? 3.0
                                                                     : 1.0;
  };
  play.through(plan);
  EXPECT_EQ(plan.fate(1), VersionFate::Measured);
}

TEST(MeasuringPlan, DropsNoVersionWhileTheOriginalHasOneTimeOnly) {
  MeasuringPlan plan(versions(1), 5, false);
  Play play{{5, 4}};
  play.hasTime = [count = 0](const PlannedRun &run) mutable {
    return run.version != 0 || run.purpose != PlannedRun::Purpose::Sample ||
           ++count > 2;
  };
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    return run.version == 1 && run.purpose == PlannedRun::Purpose::Sample &&
                   ++count <= 2
               ? 3.0
               : 1.0;
  };
  play.through(plan);
  EXPECT_EQ(plan.fate(1), VersionFate::Measured);
}

TEST(MeasuringPlan, ComparesTheOriginalWithItselfAfterTheLastCandidate) {
  MeasuringPlan plan(versions(1), 5, true);
  Play play{{5, 4}};
  play.works = [](const PlannedRun &run) { return run.version == 0; };
  EXPECT_THAT(play.through(plan), ElementsAre("0r", "1wc", "0wc"));
  EXPECT_EQ(plan.fate(1), VersionFate::Failed);
}

TEST(MeasuringPlan, RepeatsRunsWithoutATimeButNotForEver) {
  MeasuringPlan plan(versions(1), 3, false);
  Play play{{5, 4}};
  play.hasTime = [count = 0](const PlannedRun &run) mutable {
    return run.version != 1 || ++count > 3;
  };
  play.through(plan);
  EXPECT_THAT(plan.samples(1), SizeIs(3));

  MeasuringPlan hopeless(versions(1), 3, false);
  play.hasTime = [](const PlannedRun &run) { return run.version != 1; };
  EXPECT_THAT(play.through(hopeless), SizeIs(3 + 3 + 6));
  EXPECT_THAT(hopeless.samples(1), SizeIs(0));
}

TEST(MeasuringPlan, HasNothingToRunWithoutCandidates) {
  MeasuringPlan plan(versions(0), 7, true);
  EXPECT_FALSE(plan.next());
}

TEST(MeasuringPlan, RemembersThatAnOutputWasOnlyWithinTheBound) {
  MeasuringPlan plan(versions(2), 2, true);
  Play play{{5, 4, 3}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 2 ? Equality::WithinBound : Equality::Equal;
  };
  play.through(plan);
  EXPECT_TRUE(plan.alwaysEqual(1));
  EXPECT_FALSE(plan.alwaysEqual(2));
  EXPECT_EQ(plan.fate(2), VersionFate::Measured);
}

namespace {
using Purpose = PlannedRun::Purpose;

int countOf(const std::vector<std::string> &runs, const std::string &run) {
  return static_cast<int>(std::count(runs.begin(), runs.end(), run));
}
} // namespace

TEST(MeasuringPlan, RepeatsNothingWhereTheFirstSamplesDecide) {
  MeasuringPlan faster(versions(1), 7, true);
  EXPECT_THAT((Play{{100, 50}}).through(faster), Each(Not(HasSubstr("+"))));
  EXPECT_EQ(faster.decide().winner, "g0S1");
  MeasuringPlan alike(versions(1), 7, true);
  EXPECT_THAT((Play{{100, 100}}).through(alike), Each(Not(HasSubstr("+"))));
  EXPECT_TRUE(alike.decide().decided);
  EXPECT_EQ(alike.decide().winner, "");
}

// Every second sample of the first pass takes three times as long.
TEST(MeasuringPlan, RepeatsSamplesThatWereDisturbed) {
  MeasuringPlan plan(versions(1), 5, true);
  Play play{{100, 80}};
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    const bool isFirst = run.purpose == Purpose::Sample && !run.repeats;
    return isFirst && run.version == 1 && ++count % 2 == 0 ? 3.0 : 1.0;
  };
  const std::vector<std::string> runs = play.through(plan);
  EXPECT_THAT(runs, SizeIs(3 + 10 + 20));
  EXPECT_EQ(countOf(runs, "1+"), 8);
  EXPECT_THAT(std::vector<std::string>(runs.begin() + 13, runs.begin() + 17),
              testing::AnyOf(ElementsAre("0+", "1+", "1+", "0+"),
                             ElementsAre("1+", "0+", "0+", "1+")))
      << "in rotating order";
  EXPECT_EQ(countOf(runs, "1+c"), 2) << "at the end of each pass";
  EXPECT_THAT(plan.samples(1), Each(testing::DoubleEq(80)));
  EXPECT_EQ(plan.decide().winner, "g0S1");
}

TEST(MeasuringPlan, MakesOneTimeOfTheRunsOfASample) {
  MeasuringPlan plan(versions(1), 5, false);
  Play play{{100, 80}};
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    const double byPass[] = {0.9, 1.6, 5.0};
    return run.version == 1 && run.purpose == Purpose::Sample
               ? byPass[count++ / 5]
               : 1.0;
  };
  for (int i = 0; i != 3 + 3 * 10; ++i) {
    const PlannedRun run = plan.next().value();
    // The original is such that no decision is possible before the end.
    const bool isOdd = run.repeats.value_or(plan.samples(0).size()) % 2 == 1;
    plan.completed(run, run.version == 0 ? (isOdd ? 60.0 : 160.0)
                                         : 80.0 * play.disturbance(run));
  }
  EXPECT_THAT(plan.samples(1),
              Each(testing::DoubleEq(std::sqrt(72.0 * 128.0))));
  EXPECT_THAT(plan.samples(0), SizeIs(5));
}

// The version's time was known in five of its fourteen runs.
TEST(MeasuringPlan, RepeatsNoSampleThatIsNotThere) {
  MeasuringPlan plan(versions(1), 7, true);
  Play play{{100, 80}};
  play.hasTime = [count = 0](const PlannedRun &run) mutable {
    return run.version != 1 || run.purpose != Purpose::Sample || run.repeats ||
           ++count > 9;
  };
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    return run.version == 0 && run.purpose == Purpose::Sample && !run.repeats &&
                   ++count % 2 == 0
               ? 0.5
               : 1.0;
  };
  const std::vector<std::string> runs = play.through(plan);
  EXPECT_THAT(plan.samples(1), SizeIs(5));
  EXPECT_THAT(runs, Contains("1+"));
  EXPECT_EQ((countOf(runs, "1+") + countOf(runs, "1+c")) % 5, 0);
}

// The noise of the second version is such that it might win; the third is
// slower for certain.
TEST(MeasuringPlan, RepeatsNoVersionThatCannotWin) {
  MeasuringPlan plan(versions(2), 7, false);
  Play play{{100, 100, 130}};
  play.disturbance = [count = 0](const PlannedRun &run) mutable {
    return run.version == 1 && ++count % 3 == 0 ? 0.7 : 1.0;
  };
  const std::vector<std::string> runs = play.through(plan);
  EXPECT_THAT(runs, Contains("1+"));
  EXPECT_THAT(runs, Contains("0+"));
  EXPECT_THAT(runs, Not(Contains("2+")));
}

TEST(MeasuringPlan, RepeatsOnlyTheThreeFastestOfThoseThatMayWin) {
  MeasuringPlan plan(versions(5), 7, false);
  Play play{{100, 96, 95, 94, 93, 97}};
  play.disturbance = [runs =
                          std::vector<int>(6)](const PlannedRun &run) mutable {
    return run.version != 0 && ++runs[run.version] % 3 == 0 ? 1.3 : 1.0;
  };
  const std::vector<std::string> runs = play.through(plan);
  for (const char *run : {"2+", "3+", "4+"})
    EXPECT_THAT(runs, Contains(run));
  EXPECT_THAT(runs, Not(Contains("1+")));
  EXPECT_THAT(runs, Not(Contains("5+")));
}

// From the second pass on the machine is busy; the fifth version is not
// repeated.
TEST(MeasuringPlan, ComparesAVersionWithTheOriginalInTheSamePasses) {
  MeasuringPlan plan(versions(4), 7, false);
  Play play{{100, 99, 99, 99, 100}};
  play.disturbance = [runs =
                          std::vector<int>(5)](const PlannedRun &run) mutable {
    const double noise = ++runs[run.version] % 2 == 0 ? 1.1 : 1.0;
    return run.repeats ? 3.0 * noise : noise;
  };
  const std::vector<std::string> runs = play.through(plan);
  EXPECT_THAT(runs, Contains("1+"));
  EXPECT_THAT(runs, Not(Contains("4+")));
  EXPECT_EQ(plan.decide().winner, "");
}

namespace {
/// Times that spread so far, both ways, that nothing is ever decided.
Play wildPlay() {
  Play play{{100, 100}};
  play.disturbance = [random = std::mt19937(1)](const PlannedRun &) mutable {
    return std::lognormal_distribution<double>(0.0, 1.0)(random);
  };
  return play;
}
} // namespace

TEST(MeasuringPlan, EndsAfterTwentySevenPasses) {
  MeasuringPlan plan(versions(1), 7, false);
  EXPECT_THAT(wildPlay().through(plan), SizeIs(3 + 27 * 14));
  EXPECT_EQ(plan.decide().winner, "");
}

TEST(MeasuringPlan, BeginsNoPassAfterHalfAMinuteOfRuns) {
  MeasuringPlan plan(versions(1), 7, false);
  Play play = wildPlay();
  play.each = std::chrono::seconds(1);
  EXPECT_THAT(play.through(plan), SizeIs(3 + 2 * 14));
}

// The last run, which is compared, is missing.
TEST(MeasuringPlan, ChoosesNoVersionThatWasComparedOnlyOnce) {
  MeasuringPlan plan(versions(1), 7, true);
  for (int i = 0; i != 3 + 13; ++i) {
    const PlannedRun run = plan.next().value();
    plan.completed(run, run.version == 0 ? 100.0 : 50.0);
    if (run.compared)
      plan.compared(run, Equality::Equal);
  }
  EXPECT_FALSE(plan.decide().decided);
  EXPECT_EQ(plan.decide().winner, "");
  const PlannedRun last = plan.next().value();
  EXPECT_EQ(last.version, 1U);
  plan.completed(last, 50.0);
  plan.compared(last, Equality::Equal);
  EXPECT_TRUE(plan.decide().decided);
  EXPECT_EQ(plan.decide().winner, "g0S1");
}

TEST(MeasuringPlan, ChoosesAVersionThatIsNotComparedWhereNoneIs) {
  MeasuringPlan plan(versions(1), 7, false);
  (Play{{100, 50}}).through(plan);
  EXPECT_EQ(plan.decide().winner, "g0S1");
}

TEST(MeasuringPlan, IsForTheOriginalOnceNoCandidateIsLeft) {
  MeasuringPlan plan(versions(1), 7, true);
  Play play{{100, 50}};
  play.equality = [](const PlannedRun &run) {
    return run.version == 1 ? Equality::Different : Equality::Equal;
  };
  play.through(plan);
  EXPECT_TRUE(plan.decide().decided);
  EXPECT_EQ(plan.decide().winner, "");
}

namespace {
/// Times as on a machine whose cores are shared: what is common to a round
/// changes slowly, each run is lengthened by a part of its own, and some are
/// stopped for a while.
class BusyMachine {
public:
  BusyMachine(unsigned seed, double common, double own, double stopped)
      : random(seed), step(0.0, common), ownPart(1.0 / own),
        isStopped(stopped) {}

  double operator()(const PlannedRun &) {
    load = 0.9 * load + step(random);
    return std::exp(load) * (1.0 + ownPart(random)) *
           (isStopped(random) ? 2.5 : 1.0);
  }

private:
  std::mt19937 random;
  double load = 0.0;
  std::normal_distribution<double> step;
  std::exponential_distribution<double> ownPart;
  std::bernoulli_distribution isStopped;
};

// How often the second version won.
int timesWon(const std::vector<double> &times, BusyMachine machine,
             int configurations) {
  int won = 0;
  for (int i = 0; i != configurations; ++i) {
    const auto candidates = static_cast<unsigned>(times.size() - 1);
    MeasuringPlan plan(versions(candidates), 7, false);
    Play play{times};
    play.disturbance = std::ref(machine);
    play.through(plan);
    won += plan.decide().winner == "g0S1" ? 1 : 0;
  }
  return won;
}

// How often any of twenty exact copies won.
int wrongWinners(BusyMachine machine, int configurations) {
  int wrong = 0;
  for (int i = 0; i != configurations; ++i) {
    MeasuringPlan plan(versions(20), 7, false);
    Play play{std::vector<double>(21, 1.0)};
    play.disturbance = std::ref(machine);
    play.through(plan);
    wrong += plan.decide().winner.empty() ? 0 : 1;
  }
  return wrong;
}
} // namespace

TEST(MeasuringPlan, FindsAVersionThatIsAFifthFasterOnABusyMachine) {
  const std::vector<double> alone = {1.2, 1.0};
  const std::vector<double> withOthers = {1.2, 1.0, 1.2, 1.2, 1.8};
  for (const std::vector<double> &times : {alone, withOthers}) {
    EXPECT_GE(timesWon(times, BusyMachine(1, 0.0, 0.03, 0.1), 100), 95);
    EXPECT_GE(timesWon(times, BusyMachine(2, 0.02, 0.1, 0.1), 100), 95);
    EXPECT_GE(timesWon(times, BusyMachine(3, 0.03, 0.3, 0.2), 100), 85);
  }
}

TEST(MeasuringPlan, FindsNoWinnerAmongTwentyCopiesOnABusyMachine) {
  constexpr int configurations = 60, allowed = configurations / 20;
  EXPECT_LE(wrongWinners(BusyMachine(4, 0.0, 0.03, 0.1), configurations),
            allowed);
  EXPECT_LE(wrongWinners(BusyMachine(5, 0.05, 0.3, 0.2), configurations),
            allowed);
  EXPECT_LE(wrongWinners(BusyMachine(6, 0.2, 1.0, 0.0), configurations),
            allowed);
}
