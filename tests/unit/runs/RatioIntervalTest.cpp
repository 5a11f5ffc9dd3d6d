// Tests of intervals, against counted orders and simulated samples.

#include "results/runs/RatioInterval.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

using namespace corvane;
using Samples = std::vector<double>;

// Samples of 1, 2, 4, 8 and so on times the first.
static Samples powers(int count, double first = 1.0) {
  Samples samples;
  for (int i = 0; i != count; ++i)
    samples.push_back(first * std::pow(2.0, i));
  return samples;
}

// The rank, from 1, of the version's sample that is the dividend of the upper
// limit; the divisor is the original's shortest.
static int rankOfLimit(int version, int original, double tail) {
  const std::optional<RatioInterval> interval =
      ratioInterval(powers(version), powers(original), tail);
  return interval ? 1 + static_cast<int>(std::log2(interval->high)) : 0;
}

// Of all C(14, 7) = 3432 orders of seven and seven samples, C(14 - s, 7) have
// the s-th of one side before the first of the other.
TEST(RatioInterval, TakesTheLeastRankThatIsUnlikelyEnough) {
  EXPECT_EQ(rankOfLimit(7, 7, 121.0 / 3432), 4);
  EXPECT_EQ(rankOfLimit(7, 7, 119.0 / 3432), 5);
  EXPECT_EQ(rankOfLimit(7, 7, 37.0 / 3432), 5);
  EXPECT_EQ(rankOfLimit(7, 7, 35.0 / 3432), 6);
  EXPECT_EQ(rankOfLimit(7, 7, 7.9 / 3432), 7);
}

TEST(RatioInterval, HasALowerLimitThatIsTheUpperOneOfTheInverse) {
  const Samples version = {5, 6, 7, 8, 9, 10, 11};
  const Samples original = {20, 22, 23, 25, 26, 28, 31};
  const RatioInterval ratio = *ratioInterval(version, original, 0.025);
  const RatioInterval inverse = *ratioInterval(original, version, 0.025);
  EXPECT_DOUBLE_EQ(ratio.high, 9.0 / 20.0);
  EXPECT_DOUBLE_EQ(ratio.low, 5.0 / 26.0);
  EXPECT_DOUBLE_EQ(inverse.high, 1.0 / ratio.low);
}

TEST(RatioInterval, DoesNotDependOnTheOrderOfSamples) {
  const RatioInterval ratio = *ratioInterval(
      {9, 5, 10, 8, 11, 6, 7}, {26, 31, 20, 22, 28, 25, 23}, 0.025);
  EXPECT_DOUBLE_EQ(ratio.high, 9.0 / 20.0);
  EXPECT_DOUBLE_EQ(ratio.low, 5.0 / 26.0);
}

TEST(RatioInterval, NeedsEnoughSamples) {
  EXPECT_EQ(rankOfLimit(0, 7, 0.025), 0);
  EXPECT_EQ(rankOfLimit(7, 0, 0.025), 0);
  EXPECT_EQ(rankOfLimit(3, 3, 0.025), 0); // 1 in 20
  EXPECT_EQ(rankOfLimit(2, 7, 0.025), 0); // 1 in 36
  // The numbers of versions that docs/run-record.md gives.
  EXPECT_EQ(rankOfLimit(4, 4, 0.05 / 3), 4);
  EXPECT_EQ(rankOfLimit(4, 4, 0.05 / 4), 0);
  EXPECT_EQ(rankOfLimit(7, 7, 0.05 / 171), 7);
  EXPECT_EQ(rankOfLimit(7, 7, 0.05 / 172), 0);
}

TEST(RatioInterval, AllowsForDisturbancesOfEither) {
  const RatioInterval ratio =
      *ratioInterval({50, 51, 49, 900, 50, 48, 700},
                     {100, 101, 600, 103, 800, 98, 102}, 0.05 / 4);
  EXPECT_DOUBLE_EQ(ratio.high, 51.0 / 98.0);
  EXPECT_DOUBLE_EQ(ratio.low, 48.0 / 103.0);
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
  // With 7 samples each limit is missed in 36 of 3432 cases.
  EXPECT_GE(held, rounds * 97 / 100);
  EXPECT_LT(held, rounds * 99 / 100);
}
