// Tests of keys of launches, from sizes and from text.

#include "results/LaunchKey.h"

#include <gtest/gtest.h>

#include <limits>

using namespace corvane;

static std::string fieldsOf(const std::string &kernel, std::uint32_t workDim,
                            const std::array<std::size_t, 3> &global,
                            const std::array<std::size_t, 3> &local) {
  return joinedFields(makeLaunchKey(kernel, {workDim, global, local}), ',');
}

TEST(LaunchKey, LeavesDimensionsEmptyThatTheLaunchDoesNotHave) {
  const auto key = [](std::uint32_t workDim) {
    return fieldsOf("k", workDim, {8, 7, 6}, {4, 3, 2});
  };
  EXPECT_EQ(key(0), "k,,,,,,");
  EXPECT_EQ(key(1), "k,8,,,4,,");
  EXPECT_EQ(key(2), "k,8,7,,4,3,");
  EXPECT_EQ(key(3), "k,8,7,6,4,3,2");
  EXPECT_EQ(key(std::numeric_limits<std::uint32_t>::max()), "k,8,7,6,4,3,2");
}

TEST(LaunchKey, HasZeroForLocalSizesThatWereNotGiven) {
  EXPECT_EQ(fieldsOf("k", 2, {8, 7, 0}, {}), "k,8,7,,0,0,");
}

TEST(LaunchKey, HasSizesOfAnyMagnitude) {
  const std::size_t huge = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(fieldsOf("k", 1, {huge, 0, 0}, {1, 0, 0}),
            "k,18446744073709551615,,,1,,");
}

TEST(LaunchKey, IsSplitAsItWasJoined) {
  const LaunchKey key = makeLaunchKey("k", {3, {8, 7, 6}, {4, 3, 2}});
  EXPECT_EQ(splitFields(joinedFields(key, ',')), key);
  EXPECT_EQ(splitFields("k,1"), (LaunchKey{"k", "1", "", "", "", "", ""}));
  EXPECT_EQ(splitFields("k,1,2,3,4,5,6,7").zLocal, "6,7");
}

TEST(LaunchKey, DiffersByAnyField) {
  const LaunchKey key = makeLaunchKey("k", {3, {8, 7, 6}, {4, 3, 2}});
  for (std::size_t i = 0; i != LaunchKey::fieldCount; ++i) {
    LaunchKey other = key;
    EXPECT_EQ(other, key);
    *other.fields()[i] += "0";
    EXPECT_NE(other, key);
  }
}
