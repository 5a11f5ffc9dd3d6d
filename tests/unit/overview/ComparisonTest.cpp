// Tests of comparisons of two overviews.

#include "MadeOverview.h"

#include "results/overview/Comparison.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;
using testing::SizeIs;

static Overview withTime(double time, int count = 7, const char *driver = "1") {
  return overviewOf({MadeRun(driver)
                         .configuration("k", oneDimension(64))
                         .samples("", time, count)});
}

static Change changeBetween(const Overview &before, const Overview &after) {
  const Comparison comparison = compare(before, after);
  return comparison.configurations.size() == 1
             ? comparison.configurations[0].change
             : Change::TooFew;
}

TEST(Comparison, TellsFasterFromSlower) {
  EXPECT_EQ(changeBetween(withTime(100.0), withTime(80.0)), Change::Faster);
  EXPECT_EQ(changeBetween(withTime(80.0), withTime(100.0)), Change::Slower);
  EXPECT_EQ(changeBetween(withTime(100.0), withTime(100.0)),
            Change::NoDifference);
}

TEST(Comparison, SaysNothingOfTooFewSamples) {
  EXPECT_EQ(changeBetween(withTime(100.0, 2), withTime(800.0, 2)),
            Change::TooFew);
}

TEST(Comparison, IsOfTheVersionsThatAreUsed) {
  const Overview before = overviewOf({MadeRun()
                                          .configuration("k", oneDimension(64))
                                          .samples("", 100.0)
                                          .samples("g0S4", 50.0)});
  const Overview after = withTime(50.0);
  const Comparison comparison = compare(before, after);
  ASSERT_THAT(comparison.configurations, SizeIs(1));
  EXPECT_DOUBLE_EQ(comparison.configurations[0].medianBefore, 50.0);
  EXPECT_EQ(comparison.configurations[0].change, Change::NoDifference);
  EXPECT_NEAR(comparison.configurations[0].slowdown(), 0.0, 1e-9);
}

TEST(Comparison, PairsConfigurationsAcrossDriversAndSources) {
  EXPECT_EQ(changeBetween(withTime(100.0, 7, "1"), withTime(80.0, 7, "2")),
            Change::Faster);
}

TEST(Comparison, NamesWhatOneOfThemHasAlone) {
  const Overview before = overviewOf(
      {MadeRun().configuration("a", oneDimension(64)).samples("", 1.0)});
  const Overview after = overviewOf(
      {MadeRun().configuration("a", oneDimension(32)).samples("", 1.0)});
  const Comparison comparison = compare(before, after);
  EXPECT_THAT(comparison.configurations, IsEmpty());
  EXPECT_THAT(comparison.onlyBefore, SizeIs(1));
  EXPECT_THAT(comparison.onlyAfter, SizeIs(1));
}

TEST(Comparison, DoesNotPairDifferentDevices) {
  RunRecord other =
      MadeRun().configuration("k", oneDimension(64)).samples("", 1.0);
  other.devices[0].name = "another";
  EXPECT_THAT(compare(withTime(1.0), overviewOf({other})).configurations,
              IsEmpty());
  // A log names no device.
  other.devices[0].name = "";
  EXPECT_THAT(compare(withTime(1.0), overviewOf({other})).configurations,
              SizeIs(1));
}
