// Tests of when two outputs count as equal.

#include "tuning/OutputComparison.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace corvane;

namespace {
constexpr ElementType floats{ElementType::Kind::Floating, 4};
constexpr ElementType ints{ElementType::Kind::Signed, 4};
constexpr Tolerance exact{};
constexpr Tolerance within(double bound) {
  return {Tolerance::Mode::Bound, bound};
}

template <typename Value>
OutputComparison::Result compare(ElementType type, Tolerance tolerance,
                                 const std::vector<Value> &reference,
                                 const std::vector<Value> &output) {
  const std::size_t size = reference.size() * sizeof(Value);
  OutputComparison comparison(type, tolerance);
  comparison.addPiece(0, reference.data(), output.data(), size);
  return comparison.result(largestMagnitude(type, reference.data(), size));
}

const float notANumber = std::numeric_limits<float>::quiet_NaN();
const float infinite = std::numeric_limits<float>::infinity();
} // namespace

TEST(OutputComparison, ExactMeansEveryBit) {
  EXPECT_EQ(
      compare<float>(floats, exact, {1, 2, notANumber}, {1, 2, notANumber})
          .equality,
      Equality::Equal);
  const float next = std::nextafter(2.0F, 3.0F);
  const auto result = compare<float>(floats, exact, {1, 2, 3}, {1, next, 3});
  EXPECT_EQ(result.equality, Equality::Different);
  ASSERT_TRUE(result.difference);
  EXPECT_EQ(result.difference->element, 1U);
  EXPECT_EQ(result.difference->reference, "2");
  EXPECT_EQ(result.difference->output, "2.00000024");
  EXPECT_EQ(compare<float>(floats, exact, {0.0F}, {-0.0F}).equality,
            Equality::Different);
}

TEST(OutputComparison, ABoundAllowsAPartOfTheElementsValue) {
  const auto allowed = within(1e-3);
  EXPECT_EQ(compare<float>(floats, allowed, {1000}, {1000.9F}).equality,
            Equality::WithinBound);
  EXPECT_EQ(compare<float>(floats, allowed, {1000}, {1001.5F}).equality,
            Equality::Different);
  EXPECT_EQ(compare<float>(floats, allowed, {0.0F}, {-0.0F}).equality,
            Equality::WithinBound);
}

TEST(OutputComparison, ABoundAllowsAHundredthOfItOfTheLargestMagnitude) {
  const auto allowed = within(1e-3);
  // 1000 * 1e-3 / 100 is 0.01.
  EXPECT_EQ(
      compare<float>(floats, allowed, {-1000, 0}, {-1000, 0.009F}).equality,
      Equality::WithinBound);
  const auto off =
      compare<float>(floats, allowed, {-1000, 0, 0}, {-1000, 0.009F, 0.011F});
  EXPECT_EQ(off.equality, Equality::Different);
  EXPECT_EQ(off.difference->element, 2U);
}

TEST(OutputComparison, AnInfiniteElementDoesNotWidenTheBound) {
  EXPECT_EQ(compare<float>(floats, within(0.5), {infinite, 0}, {infinite, 1})
                .equality,
            Equality::Different);
}

TEST(OutputComparison, WithinABoundNaNEqualsNaNOnly) {
  const auto allowed = within(0.5);
  EXPECT_EQ(compare<std::uint32_t>(floats, allowed, {0x7fc00000}, {0x7fc00001})
                .equality,
            Equality::WithinBound);
  EXPECT_EQ(
      compare<float>(floats, allowed, {notANumber, 1e30F}, {1, 1e30F}).equality,
      Equality::Different);
  EXPECT_EQ(
      compare<float>(floats, allowed, {1, 1e30F}, {notANumber, 1e30F}).equality,
      Equality::Different);
}

TEST(OutputComparison, WithinABoundInfinitiesMustBeTheSame) {
  const auto allowed = within(0.5);
  EXPECT_EQ(compare<float>(floats, allowed, {infinite}, {-infinite}).equality,
            Equality::Different);
  EXPECT_EQ(compare<float>(floats, allowed, {infinite}, {1e38F}).equality,
            Equality::Different);
}

TEST(OutputComparison, OfOtherTypesIsExactWhateverTheBound) {
  const auto result = compare<int>(ints, within(0.5), {7, -8, 9}, {7, -8, 10});
  EXPECT_EQ(result.equality, Equality::Different);
  EXPECT_EQ(result.difference->element, 2U);
  EXPECT_EQ(result.difference->output, "10");
}

TEST(OutputComparison, NamesTheFirstForbiddenDifferenceWhateverTheOrder) {
  const std::vector<int> reference(2048, 0);
  std::vector<int> output = reference;
  output[3] = 1;
  output[1500] = 2;
  OutputComparison comparison(ints, exact);
  comparison.addPiece(4096, &reference[1024], &output[1024], 4096);
  comparison.addPiece(0, &reference[0], &output[0], 4096);
  EXPECT_EQ(comparison.result(0).difference->element, 3U);
}

TEST(OutputComparison, SeesADifferenceInTheLastByteOfALargeBuffer) {
  const std::vector<unsigned char> reference(100001, 5);
  std::vector<unsigned char> output = reference;
  output.back() = 6;
  const auto result = compare(ElementType{}, exact, reference, output);
  EXPECT_EQ(result.equality, Equality::Different);
  EXPECT_EQ(result.difference->element, 100000U);
}

TEST(OutputComparison, ComparesTheBytesAfterTheLastWholeElement) {
  const std::vector<unsigned char> reference{0, 0, 0, 0, 1, 2};
  std::vector<unsigned char> output = reference;
  output[5] = 3;
  const auto result = compare(floats, within(0.5), reference, output);
  EXPECT_EQ(result.equality, Equality::Different);
  EXPECT_EQ(result.difference->element, 1U);
  EXPECT_EQ(result.difference->reference, "2");
  EXPECT_EQ(result.difference->output, "3");
}

TEST(OutputComparison, OfNothingIsEqual) {
  EXPECT_EQ(compare<float>(floats, exact, {}, {}).equality, Equality::Equal);
}
