// Tests of the statistics, against figures that Python's statistics module
// gave: fmean for the mean, pstdev for the deviation, median_high for the
// median.

#include "results/Statistics.h"

#include "Configs.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

static std::vector<std::string> rankedNames(const RankedConfig &config) {
  std::vector<std::string> names;
  for (const auto &[name, stats] : config.ranking)
    names.push_back(name);
  return names;
}

TEST(ComputeStats, AgreesWithTheFiguresOfThreeSamples) {
  const VersionStats stats = computeStats({10, 11, 40});
  EXPECT_EQ(stats.min, 10);
  EXPECT_EQ(stats.max, 40);
  EXPECT_EQ(stats.median, 11);
  EXPECT_DOUBLE_EQ(stats.mean, 20.333333333333332);
  EXPECT_DOUBLE_EQ(stats.stddev, 13.912424503139471);
  EXPECT_THAT(stats.outliers, ElementsAre(40));
}

TEST(ComputeStats, AgreesWithTheFiguresOfAnOddLot) {
  const VersionStats stats =
      computeStats({103.25, 0.007, 55.5, 1999.125, 55.5});
  EXPECT_EQ(stats.min, 0.007);
  EXPECT_EQ(stats.max, 1999.125);
  EXPECT_EQ(stats.median, 55.5);
  EXPECT_DOUBLE_EQ(stats.mean, 442.6764);
  EXPECT_DOUBLE_EQ(stats.stddev, 778.910759020467);
  EXPECT_THAT(stats.outliers, ElementsAre(55.5, 55.5, 103.25, 1999.125));
}

TEST(ComputeStats, DividesThePopulationByItsSize) {
  const VersionStats stats = computeStats({2, 4, 4, 4, 5, 5, 7, 9});
  EXPECT_DOUBLE_EQ(stats.mean, 5);
  EXPECT_DOUBLE_EQ(stats.stddev, 2);
}

TEST(ComputeStats, TakesTheUpperMiddleOfTwo) {
  const VersionStats stats = computeStats({10, 30});
  EXPECT_EQ(stats.median, 30);
  EXPECT_EQ(stats.mean, 20);
  EXPECT_EQ(stats.stddev, 10);
}

TEST(ComputeStats, MarksOnlyWhatIsMoreThanThreeTimesTheMinimum) {
  EXPECT_THAT(computeStats({10, 30}).outliers, IsEmpty());
  EXPECT_THAT(computeStats({10, 30.001}).outliers, ElementsAre(30.001));
}

TEST(ComputeStats, OfASingleSampleIsThatSample) {
  const VersionStats stats = computeStats({7.5});
  EXPECT_EQ(stats.min, 7.5);
  EXPECT_EQ(stats.max, 7.5);
  EXPECT_EQ(stats.median, 7.5);
  EXPECT_EQ(stats.mean, 7.5);
  EXPECT_EQ(stats.stddev, 0);
  EXPECT_THAT(stats.outliers, IsEmpty());
}

TEST(ComputeStats, SortsTheSamplesAndKeepsTheirArrival) {
  const VersionStats stats = computeStats({3, 1, 2});
  EXPECT_THAT(stats.samples, ElementsAre(1, 2, 3));
  EXPECT_THAT(stats.arrival, ElementsAre(3, 1, 2));
}

TEST(ComputeStats, DoesNothingWithoutSamples) {
  const VersionStats stats = computeStats({});
  EXPECT_EQ(stats.mean, 0);
  EXPECT_THAT(stats.arrival, IsEmpty());
}

TEST(RankVersions, PutsTheLowestMeanFirst) {
  const RankedConfig ranked =
      rankedConfig("k", {{"a", {30}}, {"baseline", {20}}, {"c", {10}}});
  EXPECT_THAT(rankedNames(ranked), ElementsAre("c", "baseline", "a"));
}

TEST(RankVersions, RanksByTheMeanAndNotByAnotherFigure) {
  const RankedConfig ranked =
      rankedConfig("k", {{"a", {1, 1, 100}}, {"b", {20, 20, 20}}});
  EXPECT_THAT(rankedNames(ranked), ElementsAre("b", "a"));
}

TEST(RankVersions, KeepsEqualMeansInTheOrderOfTheirNames) {
  EXPECT_THAT(
      rankedNames(rankedConfig(
          "k", {{"g0S8", {10, 30}}, {"g0S2", {20}}, {"g0S4", {30, 10}}})),
      ElementsAre("g0S2", "g0S4", "g0S8"));
}

TEST(RankVersions, KeepsManyEqualMeansInTheOrderOfTheirNames) {
  Versions versions;
  std::vector<std::string> expected;
  for (int i = 100; i != 400; ++i) {
    expected.push_back("g0S" + std::to_string(i));
    versions.insert(versions.begin(), {expected.back(), {5}});
  }
  EXPECT_EQ(rankedNames(rankedConfig("k", versions)), expected);
}

TEST(RankVersions, KnowsTheFiguresOfTheBaseline) {
  const RankedConfig ranked = rankedConfig("k", {{"baseline", {3, 1}}});
  ASSERT_NE(ranked.baseline(), nullptr);
  EXPECT_EQ(ranked.baseline()->mean, 2);
  EXPECT_EQ(ranked.ranking[0].second.mean, 2);
  EXPECT_THAT(ranked.ranking[0].second.samples, ElementsAre(1, 3));
  EXPECT_THAT(ranked.ranking[0].second.arrival, ElementsAre(3, 1));
}

TEST(RankVersions, WorksWithoutABaseline) {
  const RankedConfig ranked = rankedConfig("k", {{"b", {2}}, {"a", {1}}});
  EXPECT_THAT(rankedNames(ranked), ElementsAre("a", "b"));
  EXPECT_EQ(ranked.baseline(), nullptr);
}

TEST(SampleCount, IsThatOfTheVersionWithTheFewest) {
  EXPECT_EQ(
      rankedConfig("k", {{"a", {1, 2, 3}}, {"b", {1, 2}}, {"c", {9, 9, 9, 9}}})
          .sampleCount(),
      2U);
}

TEST(SampleCount, IsZeroWithoutVersions) {
  EXPECT_EQ(rankedConfig("k", {}).sampleCount(), 0U);
}
