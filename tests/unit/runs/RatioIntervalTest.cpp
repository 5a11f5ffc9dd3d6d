// Tests of intervals, against counted orders and simulated samples.

#include "results/runs/RatioInterval.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

using namespace corvane;
using Samples = std::vector<double>;

// How many of the ratios of all pairs are at least the upper limit; 0 without
// an interval. All ratios differ.
static int ratiosFromLimit(int version, int original, double tail) {
  Samples times, originals;
  for (int i = 0; i != version; ++i)
    times.push_back(1.0 + 0.01 * i);
  for (int i = 0; i != original; ++i)
    originals.push_back(std::exp(0.1 + 0.0123 * i));
  const std::optional<RatioInterval> interval =
      ratioInterval(times, originals, tail);
  if (!interval)
    return 0;
  int count = 0;
  for (const double time : times)
    for (const double other : originals)
      count += time / other >= interval->high ? 1 : 0;
  return count;
}

// Of all C(14, 7) = 3432 orders of seven and seven samples, 1, 1, 2, 3, 5 and 7
// have 0, 1, 2, 3, 4 and 5 pairs in which the version's sample comes later.
TEST(RatioInterval, LeavesOutAsManyRatiosAsAreUnlikely) {
  EXPECT_EQ(ratiosFromLimit(7, 7, 0.9 / 3432), 0);
  EXPECT_EQ(ratiosFromLimit(7, 7, 1.1 / 3432), 1);
  EXPECT_EQ(ratiosFromLimit(7, 7, 2.1 / 3432), 2);
  EXPECT_EQ(ratiosFromLimit(7, 7, 3.9 / 3432), 2);
  EXPECT_EQ(ratiosFromLimit(7, 7, 4.1 / 3432), 3);
  EXPECT_EQ(ratiosFromLimit(7, 7, 11.9 / 3432), 4);
  EXPECT_EQ(ratiosFromLimit(7, 7, 19.1 / 3432), 6);
}

// The critical values of the rank-sum test, as tables give them, are one less.
TEST(RatioInterval, HasTheCriticalValuesOfTheRankSumTest) {
  EXPECT_EQ(ratiosFromLimit(5, 5, 0.025), 2 + 1);
  EXPECT_EQ(ratiosFromLimit(7, 7, 0.025), 8 + 1);
  EXPECT_EQ(ratiosFromLimit(5, 8, 0.025), 6 + 1);
  EXPECT_EQ(ratiosFromLimit(8, 5, 0.025), 6 + 1);
  EXPECT_EQ(ratiosFromLimit(10, 10, 0.025), 23 + 1);
  EXPECT_EQ(ratiosFromLimit(20, 20, 0.025), 127 + 1);
  EXPECT_EQ(ratiosFromLimit(20, 20, 0.005), 105 + 1);
}

// Where the exact distribution ends and its approximation begins.
TEST(RatioInterval, GoesOnWithoutAJumpForManySamples) {
  const int fewer = ratiosFromLimit(39, 40, 0.001);
  const int exact = ratiosFromLimit(40, 40, 0.001);
  const int approximate = ratiosFromLimit(41, 40, 0.001);
  EXPECT_LE(approximate - exact, exact - fewer) << "it errs to the safe side";
  EXPECT_NEAR(approximate - exact, exact - fewer, 6);
}

TEST(RatioInterval, HasALowerLimitThatIsTheUpperOneOfTheInverse) {
  const Samples version = {5, 6, 7, 8, 9, 10, 11};
  const Samples original = {20, 22, 23, 25, 26, 28, 31};
  const RatioInterval ratio = *ratioInterval(version, original, 0.025);
  const RatioInterval inverse = *ratioInterval(original, version, 0.025);
  EXPECT_DOUBLE_EQ(ratio.high, 11.0 / 26.0);
  EXPECT_DOUBLE_EQ(ratio.low, 5.0 / 22.0);
  EXPECT_DOUBLE_EQ(inverse.high, 1.0 / ratio.low);
}

TEST(RatioInterval, DoesNotDependOnTheOrderOfSamples) {
  const RatioInterval ratio = *ratioInterval(
      {9, 5, 10, 8, 11, 6, 7}, {26, 31, 20, 22, 28, 25, 23}, 0.025);
  EXPECT_DOUBLE_EQ(ratio.high, 11.0 / 26.0);
  EXPECT_DOUBLE_EQ(ratio.low, 5.0 / 22.0);
}

TEST(RatioInterval, NeedsEnoughSamples) {
  EXPECT_EQ(ratiosFromLimit(0, 7, 0.025), 0);
  EXPECT_EQ(ratiosFromLimit(7, 0, 0.025), 0);
  EXPECT_EQ(ratiosFromLimit(3, 3, 0.025), 0); // 1 in 20
  EXPECT_EQ(ratiosFromLimit(2, 7, 0.025), 0); // 1 in 36
  // The numbers of versions that docs/run-record.md gives.
  EXPECT_EQ(ratiosFromLimit(4, 4, 0.05 / 4 / 2), 0);
  EXPECT_EQ(ratiosFromLimit(5, 5, 0.05 / 4 / 3), 1);
  EXPECT_EQ(ratiosFromLimit(5, 5, 0.05 / 4 / 4), 0);
  EXPECT_EQ(ratiosFromLimit(7, 7, 0.05 / 4 / 42), 1);
  EXPECT_EQ(ratiosFromLimit(7, 7, 0.05 / 4 / 43), 0);
}

TEST(RatioInterval, AllowsForADisturbance) {
  const RatioInterval ratio = *ratioInterval(
      {50, 51, 49, 900, 50, 48, 52}, {100, 101, 600, 103, 100, 98, 102}, 0.025);
  EXPECT_LT(ratio.high, 0.54);
  EXPECT_GT(ratio.low, 0.46);
}

TEST(RatioInterval, GetsNarrowWithManySamples) {
  std::mt19937 random(1);
  std::lognormal_distribution<double> noise(0.0, 0.1);
  Samples version, original;
  for (int i = 0; i != 20000; ++i) {
    version.push_back(0.7 * noise(random));
    original.push_back(noise(random));
  }
  const RatioInterval ratio = *ratioInterval(version, original, 0.025);
  EXPECT_NEAR(ratio.low, 0.7, 0.005);
  EXPECT_NEAR(ratio.high, 0.7, 0.005);
  EXPECT_LT(ratio.low, ratio.high);
}

TEST(RatioInterval, IsOfOneRatioWhereAllSamplesAreTheSame) {
  const std::optional<RatioInterval> interval =
      ratioInterval(Samples(7, 3.0), Samples(7, 4.0), 0.025);
  ASSERT_TRUE(interval);
  EXPECT_DOUBLE_EQ(interval->low, 0.75);
  EXPECT_DOUBLE_EQ(interval->high, 0.75);
}

TEST(RatioInterval, TakesTimesOfNothing) {
  const std::optional<RatioInterval> interval =
      ratioInterval(Samples(7, 0.0), Samples(7, 0.0), 0.025);
  ASSERT_TRUE(interval);
  EXPECT_DOUBLE_EQ(interval->low, 1.0);
}

TEST(RatioInterval, HasFiniteLimits) {
  const Samples nothing(7, 0.0), much(7, 1e308);
  EXPECT_TRUE(std::isfinite(ratioInterval(much, nothing, 0.025)->high));
  EXPECT_TRUE(std::isfinite(ratioInterval(much, nothing, 0.025)->low));
  EXPECT_TRUE(std::isfinite(ratioInterval(nothing, much, 0.025)->low));
}

TEST(RatioInterval, HoldsTheTrueRatioAsOftenAsItSays) {
  std::mt19937 random(20);
  std::lognormal_distribution<double> noise(0.0, 0.3);
  int held = 0;
  constexpr int rounds = 2000;
  for (int round = 0; round != rounds; ++round) {
    Samples version, original;
    for (int i = 0; i != 7; ++i) {
      version.push_back(0.8 * noise(random));
      original.push_back(noise(random));
    }
    const RatioInterval interval = *ratioInterval(version, original, 0.025);
    held += interval.low <= 0.8 && 0.8 <= interval.high ? 1 : 0;
  }
  // With 7 samples each limit is missed in 65 of 3432 cases.
  EXPECT_GE(held, rounds * 95 / 100);
  EXPECT_LT(held, rounds * 98 / 100);
}
