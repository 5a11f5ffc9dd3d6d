// Tests of the order of conditions, and of what a condition does by default.
#include "variants/Transform.h"

#include "variants/ArgumentConditions.h"
#include "variants/CoarseRequest.h"

#include <gtest/gtest.h>

namespace {

using corvane::TransformOrder;
using llvm::CoarseRequest;
using llvm::DivisibleArgs;
using llvm::RestrictArgs;

CoarseRequest coarse(std::uint32_t dimension, std::uint32_t factor) {
  CoarseRequest made;
  made.dim = made.dimension = dimension;
  made.factor = factor;
  return made;
}

bool before(const llvm::Transform &a, const llvm::Transform &b) {
  return TransformOrder()(a, b);
}

/// A condition that overrides nothing but what it must.
struct PlainCondition : llvm::Transform {
  PlainCondition() : Transform(1, 0) {}
  std::string specText() const override { return "p"; }
  std::unique_ptr<Transform> clone() const override {
    return std::make_unique<PlainCondition>(*this);
  }
};

TEST(TransformOrder, PutsRestrictionsThenCoarseningThenDivisibility) {
  const RestrictArgs restricted;
  const CoarseRequest high = coarse(4294967295U, 9);
  const DivisibleArgs divisible;
  EXPECT_TRUE(before(restricted, high));
  EXPECT_TRUE(before(high, divisible));
  EXPECT_TRUE(before(restricted, divisible));
  EXPECT_FALSE(before(high, restricted));
  EXPECT_FALSE(before(divisible, high));
  EXPECT_FALSE(before(divisible, restricted));
}

TEST(TransformOrder, PutsTheLowerDimensionFirst) {
  EXPECT_TRUE(before(coarse(0, 9), coarse(1, 2)));
  EXPECT_FALSE(before(coarse(1, 2), coarse(0, 9)));
}

TEST(TransformOrder, AsksTheConditionsOnTheSameDimension) {
  EXPECT_TRUE(before(coarse(1, 2), coarse(1, 9)));
  EXPECT_FALSE(before(coarse(1, 9), coarse(1, 2)));
}

TEST(TransformOrder, FindsEqualConditionsEquivalent) {
  EXPECT_FALSE(before(coarse(1, 2), coarse(1, 2)));
  EXPECT_FALSE(before(DivisibleArgs(), DivisibleArgs()));
}

TEST(TransformOrder, NeverFindsRestrictionsEquivalent) {
  EXPECT_TRUE(before(RestrictArgs(), RestrictArgs()));
}

TEST(Transform, AcceptsAndPrecedesEverythingByDefault) {
  const PlainCondition plain;
  const std::size_t size = 7;
  EXPECT_TRUE(plain.acceptsLaunch(1, &size, &size));
  EXPECT_TRUE(plain.acceptsArgument(0, sizeof size, &size));
  EXPECT_TRUE(plain.precedes(plain));
}

TEST(Transform, LeavesTheLaunchAloneByDefault) {
  std::size_t global = 7;
  std::size_t local = 3;
  PlainCondition().adjustLaunch(1, &global, &local);
  EXPECT_EQ(global, 7U);
  EXPECT_EQ(local, 3U);
}

} // namespace
