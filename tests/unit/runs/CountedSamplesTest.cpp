// Tests of which samples of a record count.

#include "results/runs/CountedSamples.h"

#include <gmock/gmock.h>

using namespace corvane;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CountedRuns, AreKeptByVersionInTheirOrder) {
  auto counted = countedRuns(
      {{0, "", 5.0, false}, {0, "g0S2", 3.0, false}, {0, "", 4.0, false}});
  EXPECT_THAT(counted[""], ElementsAre(ElementsAre(5.0), ElementsAre(4.0)));
  EXPECT_THAT(counted["g0S2"], ElementsAre(ElementsAre(3.0)));
}

TEST(CountedRuns, LeaveWarmUpsOut) {
  EXPECT_THAT(countedRuns({{0, "", 5.0, true}}), IsEmpty());
}

TEST(CountedRuns, BelongToTheSampleThatTheyRepeat) {
  auto counted = countedRuns({{0, "", 5.0, false},
                              {0, "", 6.0, false},
                              {0, "", 20.0, false, 0},
                              {0, "", 7.0, false, 1},
                              {0, "", 8.0, false, 1}});
  EXPECT_THAT(counted[""],
              ElementsAre(ElementsAre(5.0, 20.0), ElementsAre(6.0, 7.0, 8.0)));
}

TEST(CountedRuns, RepeatNothingThatIsNotThere) {
  auto counted = countedRuns({{0, "", 5.0, false},
                              {0, "", 1.0, false, 1},
                              {0, "g0S2", 1.0, false, 0},
                              {0, "", 1.0, false, UINT64_MAX}});
  EXPECT_THAT(counted[""], ElementsAre(ElementsAre(5.0)));
  EXPECT_THAT(counted["g0S2"], IsEmpty());
}

TEST(SamplesAfter, SomePassesLeaveLaterRunsOut) {
  const SampleRuns runs = {{8.0, 2.0, 1e9, 1.0}, {3.0}};
  EXPECT_EQ(passesOf(runs), 4U);
  EXPECT_EQ(passesOf({}), 0U);
  EXPECT_THAT(samplesAfter(1, runs), ElementsAre(8.0, 3.0));
  EXPECT_THAT(samplesAfter(3, runs), ElementsAre(testing::DoubleEq(4.0), 3.0));
}

TEST(SampleOf, IsTheGeometricMeanOfTheQuickerTwoThirds) {
  EXPECT_DOUBLE_EQ(sampleOf({7.0}), 7.0);
  EXPECT_DOUBLE_EQ(sampleOf({8.0, 2.0}), 4.0);
  EXPECT_DOUBLE_EQ(sampleOf({8.0, 1e9, 2.0}), 4.0);
  EXPECT_DOUBLE_EQ(sampleOf({1e9, 8.0, 8.0, 1e9, 2.0, 2.0, 4.0, 4.0, 1e9}),
                   4.0);
}

TEST(SampleOf, TakesTimesOfNothing) {
  EXPECT_GE(sampleOf({0.0, 0.0, 5.0}), 0.0);
  EXPECT_LT(sampleOf({0.0, 0.0, 5.0}), 1e-300);
  EXPECT_NEAR(sampleOf({1e308, 1e308, 1e308}) / 1e308, 1.0, 1e-9);
}
