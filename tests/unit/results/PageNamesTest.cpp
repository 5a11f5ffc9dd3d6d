// Titles, file names and the count of samples.

#include "results/report/Pages.h"

#include "Configs.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

static ConfigResults sized(const std::vector<std::string> &global,
                           const std::vector<std::string> &local) {
  ConfigResults config;
  config.kernel = "k";
  config.xGlobal = global[0];
  config.yGlobal = global[1];
  config.zGlobal = global[2];
  config.xLocal = local[0];
  config.yLocal = local[1];
  config.zLocal = local[2];
  return config;
}

TEST(PageBase, JoinsTheKeyWithUnderscores) {
  EXPECT_EQ(pageBase(sized({"1", "2", "3"}, {"4", "5", "6"})), "k_1_2_3_4_5_6");
}

TEST(PageBase, HasAdjacentUnderscoresForEmptySizes) {
  EXPECT_EQ(pageBase(config("k", {})), "k_1024___64__");
}

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
