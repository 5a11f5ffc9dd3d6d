// Tests of decisions on few samples, and of how often chance decides.

#include "results/runs/Decision.h"

#include <gmock/gmock.h>

#include <random>

using namespace corvane;
using testing::ElementsAre;

static VersionSamples version(const char *name, std::vector<double> samples) {
  return {name, std::move(samples), false};
}

static const VersionSamples ofOriginal =
    version("", {100, 101, 99, 103, 100, 98, 102});

TEST(MedianOf, IsTheMiddleOrBetweenTheTwoInTheMiddle) {
  EXPECT_EQ(medianOf({3, 1, 2}), 2);
  EXPECT_EQ(medianOf({4, 1, 3, 2}), 2.5);
  EXPECT_EQ(medianOf({}), 0);
}

TEST(IsHopeless, NeedsTwoSamplesOverTwiceTheMedian) {
  EXPECT_TRUE(isHopeless({201, 202}, 100));
  EXPECT_TRUE(isHopeless({201, 202, 1}, 100));
  EXPECT_FALSE(isHopeless({201}, 100));
  EXPECT_FALSE(isHopeless({201, 200}, 100));
  EXPECT_FALSE(isHopeless({200, 500}, 100));
}

TEST(Decide, ChoosesAVersionThatIsClearlyFaster) {
  const Decision decision =
      decide({ofOriginal, version("a", {50, 51, 49, 53, 50, 48, 52}),
              version("b", {40, 41, 39, 43, 40, 38, 42})});
  EXPECT_TRUE(decision.decided);
  EXPECT_EQ(decision.winner, "b");
  ASSERT_EQ(decision.versions.size(), 3U);
  EXPECT_EQ(decision.versions[0].median, 100);
  EXPECT_FALSE(decision.versions[0].interval);
  EXPECT_EQ(decision.versions[2].median, 40);
  EXPECT_EQ(decision.versions[2].samples, 7U);
  EXPECT_LE(decision.versions[2].interval->low, 0.4);
  EXPECT_GE(decision.versions[2].interval->high, 0.4);
}

TEST(Decide, KeepsTheOriginalWhereTheGainIsTooSmall) {
  // All samples are faster, by one percent.
  const Decision decision =
      decide({version("", std::vector<double>(7, 100.0)),
              version("a", std::vector<double>(7, 99.0))});
  EXPECT_TRUE(decision.decided);
  EXPECT_EQ(decision.winner, "");
  EXPECT_DOUBLE_EQ(decision.versions[1].interval->high, 0.99);
}

TEST(Decide, KeepsTheOriginalWhereSamplesOverlap) {
  const Decision decision =
      decide({ofOriginal, version("a", {50, 150, 60, 140, 70, 130, 80})});
  EXPECT_TRUE(decision.decided);
  EXPECT_EQ(decision.winner, "");
}

TEST(Decide, WaitsForEnoughSamples) {
  const Decision decision =
      decide({version("", {100, 101, 99}), version("a", {50, 51, 49})});
  EXPECT_FALSE(decision.decided);
  EXPECT_EQ(decision.winner, "");
}

// However clear the samples look: docs/run-record.md has these numbers.
TEST(Decide, NeedsMoreSamplesTheMoreVersionsThereAre) {
  const auto isDecided = [](int samples, int candidates) {
    std::vector<VersionSamples> versions;
    for (int i = 0; i <= candidates; ++i)
      versions.push_back({i == 0 ? "" : "g0S" + std::to_string(i),
                          std::vector<double>(samples, i == 0 ? 100 : 50)});
    for (VersionSamples &each : versions)
      for (int i = 0; i != samples; ++i)
        each.samples[i] += 0.01 * i;
    return decide(versions).decided;
  };
  EXPECT_FALSE(isDecided(4, 1));
  EXPECT_TRUE(isDecided(5, 1));
  EXPECT_TRUE(isDecided(5, 3));
  EXPECT_FALSE(isDecided(5, 4));
  EXPECT_TRUE(isDecided(7, 42));
  EXPECT_FALSE(isDecided(7, 43));
}

TEST(Decide, WaitsForTheOriginal) {
  EXPECT_FALSE(decide({version("a", {1, 1, 1, 1, 1})}).decided);
  EXPECT_FALSE(decide({version("", {}), version("a", {1, 1})}).decided);
  EXPECT_FALSE(decide({}).decided);
}

TEST(Decide, DoesNotWaitForVersionsThatWereDropped) {
  const Decision decision =
      decide({ofOriginal, version("a", {300, 301}),
              version("b", {40, 41, 39, 43, 40, 38, 42})});
  EXPECT_TRUE(decision.decided);
  EXPECT_EQ(decision.winner, "b");
  EXPECT_TRUE(decision.versions[1].dropped);
  EXPECT_FALSE(decision.versions[2].dropped);
}

TEST(Decide, LeavesOutVersionsThatAreDifferent) {
  VersionSamples wrong = version("a", {1, 1, 1, 1, 1, 1, 1});
  wrong.out = true;
  const Decision decision =
      decide({ofOriginal, wrong, version("b", {40, 41, 39, 43, 40, 38, 42})});
  EXPECT_TRUE(decision.decided);
  EXPECT_EQ(decision.winner, "b");
  EXPECT_FALSE(decision.versions[1].interval);
}

// The load was less when a was measured.
TEST(Decide, ComparesAVersionWithTheSamplesThatWereTakenWithIt) {
  VersionSamples quiet = version("a", {50, 51, 49, 53, 50, 48, 52});
  quiet.originals = {50, 51, 49, 53, 50, 48, 52};
  const VersionSamples faster = version("b", {80, 81, 79, 83, 80, 78, 82});
  EXPECT_EQ(decide({ofOriginal, quiet}).winner, "");
  EXPECT_EQ(decide({ofOriginal, quiet, faster}).winner, "b");
}

TEST(Decide, ChoosesTheFirstOfTwoThatAreAlike) {
  const std::vector<double> fast = {50, 51, 49, 53, 50, 48, 52};
  EXPECT_EQ(decide({version("b", fast), ofOriginal, version("a", fast)}).winner,
            "b");
}

namespace {

/// Makes times as they are measured: a common part, noise, and now and then a
/// large disturbance.
class Clock {
public:
  Clock(unsigned seed, double spread, double outliers)
      : random(seed), noise(0.0, spread), isOutlier(outliers) {}

  std::vector<double> samples(double time, int count = 7) {
    std::vector<double> drawn;
    for (int i = 0; i != count; ++i)
      drawn.push_back(time * noise(random) * (isOutlier(random) ? 3.0 : 1.0));
    return drawn;
  }

private:
  std::mt19937 random;
  std::lognormal_distribution<double> noise;
  std::bernoulli_distribution isOutlier;
};

} // namespace

// Decides on the original and twenty exact copies of it; returns how often a
// copy won.
static int wrongWinners(Clock clock, int configurations) {
  int wrong = 0;
  for (int i = 0; i != configurations; ++i) {
    std::vector<VersionSamples> versions = {version("", clock.samples(1.0))};
    for (int copy = 0; copy != 20; ++copy)
      versions.push_back(
          version(("g0S" + std::to_string(copy)).c_str(), clock.samples(1.0)));
    wrong += decide(versions).winner.empty() ? 0 : 1;
  }
  return wrong;
}

TEST(Decide, FindsNoWinnerAmongTwentyCopies) {
  constexpr int configurations = 400, allowed = configurations / 20;
  EXPECT_LE(wrongWinners(Clock(1, 0.02, 0.0), configurations), allowed);
  EXPECT_LE(wrongWinners(Clock(2, 0.1, 0.0), configurations), allowed);
  EXPECT_LE(wrongWinners(Clock(3, 0.5, 0.0), configurations), allowed);
  EXPECT_LE(wrongWinners(Clock(4, 0.05, 0.2), configurations), allowed);
}

// The least median of twenty copies is often two percent better: without an
// interval chance would decide.
TEST(Decide, WouldFindWinnersAmongCopiesByTheMedianAlone) {
  Clock clock(5, 0.1, 0.0);
  int faster = 0;
  for (int i = 0; i != 100; ++i) {
    const double median = medianOf(clock.samples(1.0));
    double least = median;
    for (int copy = 0; copy != 20; ++copy)
      least = std::min(least, medianOf(clock.samples(1.0)));
    faster += least < winningRatio * median ? 1 : 0;
  }
  EXPECT_GT(faster, 50);
}
