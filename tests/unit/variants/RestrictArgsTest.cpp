// Tests of restricted arguments: part of the name, but no condition.
#include "variants/ArgumentConditions.h"

#include <gmock/gmock.h>

namespace {

using corvane::makeRestrictArgs;
using llvm::RestrictArgs;
using testing::ElementsAre;
using testing::IsEmpty;

/// The condition that an item makes; ends the test if it makes none.
RestrictArgs restricted(std::initializer_list<std::uint32_t> numbers) {
  const std::unique_ptr<llvm::Transform> condition =
      makeRestrictArgs('r', numbers);
  const auto *found = dynamic_cast<const RestrictArgs *>(condition.get());
  EXPECT_NE(found, nullptr);
  return found ? *found : RestrictArgs();
}

TEST(RestrictArgs, ComesFirstOfAllKinds) {
  EXPECT_EQ(RestrictArgs().kind, 0U);
  EXPECT_EQ(RestrictArgs().dimension, 0U);
}

TEST(RestrictArgs, WritesIndicesInAscendingOrderWithoutRepeats) {
  EXPECT_EQ(restricted({3, 1, 3}).specText(), "r1S3");
}

TEST(RestrictArgs, WritesTheLetterAloneWithoutIndices) {
  EXPECT_EQ(restricted({}).specText(), "r");
}

TEST(RestrictArgs, NeverRejectsALaunch) {
  std::size_t global = 7;
  std::size_t local = 3;
  const RestrictArgs condition = restricted({3, 1, 3});
  EXPECT_TRUE(condition.acceptsLaunch(1, &global, &local));
  EXPECT_TRUE(condition.acceptsLaunch(0, &global, &local));
}

TEST(RestrictArgs, LeavesALaunchAlone) {
  std::size_t global = 7;
  std::size_t local = 3;
  restricted({0}).adjustLaunch(1, &global, &local);
  EXPECT_EQ(global, 7U);
  EXPECT_EQ(local, 3U);
}

TEST(RestrictArgs, NeverRejectsAnArgument) {
  const std::uint16_t value = 7;
  const RestrictArgs condition = restricted({3});
  EXPECT_TRUE(condition.acceptsArgument(3, sizeof value, &value));
  EXPECT_TRUE(condition.acceptsArgument(3, 0, nullptr));
}

TEST(RestrictArgs, ClonesItsIndices) {
  const std::unique_ptr<llvm::Transform> copy = restricted({3, 1}).clone();
  const auto *found = dynamic_cast<const RestrictArgs *>(copy.get());
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->kind, 0U);
  EXPECT_THAT(found->indices, ElementsAre(1, 3));
}

TEST(RestrictArgs, PrecedesEveryOther) {
  const RestrictArgs one = restricted({1});
  const RestrictArgs three = restricted({3});
  EXPECT_TRUE(one.precedes(three));
  EXPECT_TRUE(three.precedes(one));
  EXPECT_TRUE(one.precedes(one));
}

TEST(MakeRestrictArgs, TakesAnyCountOfNumbers) {
  EXPECT_THAT(restricted({}).indices, IsEmpty());
  EXPECT_THAT(restricted({4294967295U}).indices, ElementsAre(4294967295U));
  EXPECT_THAT(restricted({2, 1, 0}).indices, ElementsAre(0, 1, 2));
}

TEST(MakeRestrictArgs, LeavesOtherLettersToOthers) {
  EXPECT_EQ(makeRestrictArgs('d', {1, 2}), nullptr);
  EXPECT_EQ(makeRestrictArgs('R', {1, 2}), nullptr);
}

} // namespace
