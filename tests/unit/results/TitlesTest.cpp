// Titles and the count of samples.

#include "results/report/Pages.h"

#include "Configs.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

TEST(ConfigTitle, ListsTheDimensionsOfTheLaunch) {
  EXPECT_EQ(configTitle(sized({"1024", "", ""}, {"64", "", ""})),
            "k [ x:1024/64 ] ");
  EXPECT_EQ(configTitle(sized({"1024", "8", ""}, {"64", "8", ""})),
            "k [ x:1024/64, y:8/8 ] ");
  EXPECT_EQ(configTitle(sized({"1", "2", "3"}, {"4", "5", "6"})),
            "k [ x:1/4, y:2/5, z:3/6 ] ");
}

TEST(ConfigTitle, HasACommaBeforeTheSecondDimensionEvenWithoutAFirst) {
  EXPECT_EQ(configTitle(sized({"", "8", ""}, {"", "8", ""})), "k [ , y:8/8 ] ");
  EXPECT_EQ(configTitle(sized({"", "", ""}, {"1", "1", "1"})), "k [  ] ");
}

TEST(SampleCount, IsThatOfTheVersionWithTheFewest) {
  EXPECT_EQ(sampleCount(rankedConfig(
                "k", {{"a", {1, 2, 3}}, {"b", {1, 2}}, {"c", {9, 9, 9, 9}}})),
            2U);
}

TEST(SampleCount, IsZeroWithoutVersions) {
  EXPECT_EQ(sampleCount(rankedConfig("k", {})), 0U);
}
