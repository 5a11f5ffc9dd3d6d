// Tests of the divisibility of scalar arguments, and of the order of such
// conditions.
#include "variants/ArgumentConditions.h"

#include <gmock/gmock.h>

#include <cstring>
#include <random>

namespace {

using corvane::makeDivisibleArgs;
using llvm::DivisibleArgs;
using testing::ElementsAre;
using testing::Pair;

using Divisors = std::map<std::uint32_t, std::uint32_t>;

DivisibleArgs with(Divisors divisors) {
  DivisibleArgs condition;
  condition.divisors = std::move(divisors);
  return condition;
}

template <typename Value>
bool accepts(const DivisibleArgs &condition, std::uint32_t index, Value value) {
  return condition.acceptsArgument(index, sizeof value, &value);
}

/// The condition that an item makes; ends the test if it makes none.
DivisibleArgs divisible(std::initializer_list<std::uint32_t> numbers) {
  const std::unique_ptr<llvm::Transform> condition =
      makeDivisibleArgs('d', numbers);
  const auto *found = dynamic_cast<const DivisibleArgs *>(condition.get());
  EXPECT_NE(found, nullptr);
  return found ? *found : DivisibleArgs();
}

TEST(DivisibleArgs, StartsEmpty) {
  const DivisibleArgs fresh;
  EXPECT_EQ(fresh.kind, 3U);
  EXPECT_EQ(fresh.dimension, 0U);
  EXPECT_TRUE(fresh.divisors.empty());
}

TEST(DivisibleArgs, AcceptsAMultiple) {
  EXPECT_TRUE(accepts(with({{3, 4}}), 3, std::uint32_t{12}));
  EXPECT_TRUE(accepts(with({{3, 4}}), 3, std::uint32_t{0}));
}

TEST(DivisibleArgs, RejectsWhatIsNoMultiple) {
  EXPECT_FALSE(accepts(with({{3, 4}}), 3, std::uint32_t{10}));
}

TEST(DivisibleArgs, RejectsAValueThatIsNeither4Nor8Bytes) {
  EXPECT_FALSE(accepts(with({{3, 4}}), 3, std::uint16_t{12}));
  EXPECT_FALSE(accepts(with({{3, 4}}), 3, std::uint8_t{12}));
  const unsigned char sixteen[16] = {};
  const DivisibleArgs condition = with({{3, 4}});
  EXPECT_FALSE(condition.acceptsArgument(3, sizeof sixteen, sixteen));
  EXPECT_FALSE(condition.acceptsArgument(3, 0, sixteen));
}

TEST(DivisibleArgs, AcceptsEveryArgumentThatItDoesNotName) {
  EXPECT_TRUE(accepts(with({{3, 4}}), 2, std::uint32_t{10}));
  EXPECT_TRUE(accepts(with({{3, 4}}), 4, std::uint16_t{1}));
  EXPECT_TRUE(with({{3, 4}}).acceptsArgument(2, 24, nullptr));
}

TEST(DivisibleArgs, AcceptsEveryArgumentWithoutPairs) {
  const DivisibleArgs none = divisible({});
  EXPECT_TRUE(accepts(none, 0, std::uint32_t{7}));
  EXPECT_TRUE(accepts(none, 0, std::uint16_t{7}));
  EXPECT_TRUE(none.acceptsArgument(0, 0, nullptr));
}

TEST(DivisibleArgs, ReadsEightBytesAsAWhole) {
  const DivisibleArgs eight = with({{0, 8}});
  EXPECT_TRUE(accepts(eight, 0, std::uint64_t{1} << 40));
  EXPECT_FALSE(accepts(eight, 0, (std::uint64_t{1} << 40) + 4));
  // 3 divides neither half of the value alone: 2^32 + 2 is 3 * 1431655766.
  EXPECT_TRUE(accepts(with({{0, 3}}), 0, (std::uint64_t{1} << 32) + 2));
}

TEST(DivisibleArgs, ReadsANegativeValueAsItsBitPattern) {
  EXPECT_TRUE(accepts(with({{0, 3}}), 0, std::int32_t{-4}));
  EXPECT_TRUE(accepts(with({{0, 4}}), 0, std::int32_t{-4}));
  EXPECT_FALSE(accepts(with({{0, 8}}), 0, std::int32_t{-4}));
}

TEST(DivisibleArgs, WidensTheDivisorWithoutSign) {
  // As a signed number this divisor would be -1, which divides everything.
  const DivisibleArgs large = with({{0, 4294967295U}});
  EXPECT_TRUE(accepts(large, 0, std::uint64_t{4294967295U} * 5));
  EXPECT_FALSE(accepts(large, 0, std::uint64_t{4294967296U} * 5));
}

TEST(DivisibleArgs, ReadsAValueAtAnyAddress) {
  alignas(8) unsigned char bytes[16] = {};
  const std::uint64_t value = std::uint64_t{1} << 40;
  std::memcpy(bytes + 3, &value, sizeof value);
  EXPECT_TRUE(with({{0, 8}}).acceptsArgument(0, sizeof value, bytes + 3));
}

TEST(DivisibleArgs, RejectsEveryValueWithADivisorOfZero) {
  const DivisibleArgs zero = with({{0, 0}});
  EXPECT_FALSE(accepts(zero, 0, std::uint32_t{0}));
  EXPECT_FALSE(accepts(zero, 0, std::uint32_t{12}));
  EXPECT_FALSE(accepts(zero, 0, std::uint64_t{12}));
  EXPECT_TRUE(accepts(zero, 1, std::uint32_t{12}));
}

TEST(DivisibleArgs, RejectsAnArgumentWithoutAValue) {
  EXPECT_FALSE(with({{0, 4}}).acceptsArgument(0, 4, nullptr));
  EXPECT_FALSE(with({{0, 4}}).acceptsArgument(0, 8, nullptr));
}

TEST(DivisibleArgs, AcceptsEveryLaunchAndLeavesItAlone) {
  std::size_t global = 7;
  std::size_t local = 3;
  const DivisibleArgs condition = with({{0, 4}});
  EXPECT_TRUE(condition.acceptsLaunch(1, &global, &local));
  condition.adjustLaunch(1, &global, &local);
  EXPECT_EQ(global, 7U);
  EXPECT_EQ(local, 3U);
}

TEST(DivisibleArgs, WritesPairsInAscendingOrder) {
  EXPECT_EQ(with({{5, 16}, {3, 4}}).specText(), "d3S4S5S16");
  EXPECT_EQ(with({{4294967295U, 0}}).specText(), "d4294967295S0");
  EXPECT_EQ(with({}).specText(), "d");
}

TEST(DivisibleArgs, ClonesItsDivisors) {
  const std::unique_ptr<llvm::Transform> copy = with({{3, 4}, {5, 16}}).clone();
  const auto *found = dynamic_cast<const DivisibleArgs *>(copy.get());
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->kind, 3U);
  EXPECT_THAT(found->divisors, ElementsAre(Pair(3, 4), Pair(5, 16)));
}

TEST(MakeDivisibleArgs, ReadsPairsOfIndexAndDivisor) {
  EXPECT_THAT(divisible({5, 16, 3, 4}).divisors,
              ElementsAre(Pair(3, 4), Pair(5, 16)));
}

TEST(MakeDivisibleArgs, KeepsTheFirstPairForAnIndex) {
  const DivisibleArgs repeated = divisible({1, 2, 1, 3});
  EXPECT_THAT(repeated.divisors, ElementsAre(Pair(1, 2)));
  EXPECT_EQ(repeated.specText(), "d1S2");
}

TEST(MakeDivisibleArgs, NeedsAnEvenCount) {
  EXPECT_EQ(makeDivisibleArgs('d', {2, 8, 3}), nullptr);
  EXPECT_EQ(makeDivisibleArgs('d', {2}), nullptr);
}

TEST(MakeDivisibleArgs, LeavesOtherLettersToOthers) {
  EXPECT_EQ(makeDivisibleArgs('r', {2, 8}), nullptr);
  EXPECT_EQ(makeDivisibleArgs('D', {2, 8}), nullptr);
}

TEST(DivisibleArgsOrder, PutsFewerPairsFirst) {
  EXPECT_TRUE(with({{9, 9}}).precedes(with({{0, 1}, {1, 1}})));
  EXPECT_FALSE(with({{0, 1}, {1, 1}}).precedes(with({{9, 9}})));
  EXPECT_TRUE(with({}).precedes(with({{0, 1}})));
}

TEST(DivisibleArgsOrder, PutsTheLowerFirstIndexFirst) {
  EXPECT_TRUE(with({{1, 9}, {7, 9}}).precedes(with({{2, 1}, {3, 1}})));
  EXPECT_FALSE(with({{2, 1}, {3, 1}}).precedes(with({{1, 9}, {7, 9}})));
}

TEST(DivisibleArgsOrder, PutsTheLowerDivisorOfTheSameIndexFirst) {
  EXPECT_TRUE(with({{1, 2}, {7, 9}}).precedes(with({{1, 3}, {2, 1}})));
  EXPECT_FALSE(with({{1, 3}, {2, 1}}).precedes(with({{1, 2}, {7, 9}})));
}

TEST(DivisibleArgsOrder, FindsEqualOnesEquivalent) {
  EXPECT_FALSE(with({{1, 2}, {7, 9}}).precedes(with({{1, 2}, {7, 9}})));
  EXPECT_FALSE(with({}).precedes(with({})));
}

/// The order of two conditions, found by trying all argument indices from 0 on.
bool walkPrecedes(const Divisors &mine, const Divisors &other) {
  if (mine.size() < other.size())
    return true;
  if (mine.size() > other.size() || mine.empty())
    return false;

  std::size_t met = 0;
  for (std::uint32_t index = 0;; ++index) {
    const auto here = mine.find(index);
    const auto there = other.find(index);
    const bool have = here != mine.end();
    const bool otherHas = there != other.end();
    if (have)
      ++met;
    if (have && !otherHas)
      return true;
    if (otherHas && !have)
      return false;
    const std::uint32_t divisor = have ? here->second : 1;
    const std::uint32_t otherDivisor = otherHas ? there->second : 1;
    if (divisor != otherDivisor)
      return divisor < otherDivisor;
    if (met == mine.size())
      return false;
  }
}

Divisors randomDivisors(std::mt19937 &random) {
  Divisors divisors;
  for (std::uint32_t index = 0; index < 5; ++index)
    if (random() % 2)
      divisors.emplace(index, random() % 3);
  return divisors;
}

TEST(DivisibleArgsOrder, IsThatOfAWalkOverAllIndices) {
  std::mt19937 random(20240117);
  int first = 0;
  int second = 0;
  int equivalent = 0;
  for (int round = 0; round < 50000; ++round) {
    const Divisors a = randomDivisors(random);
    const Divisors b = randomDivisors(random);
    const bool aFirst = with(a).precedes(with(b));
    const bool bFirst = with(b).precedes(with(a));
    ASSERT_EQ(aFirst, walkPrecedes(a, b))
        << with(a).specText() << " before " << with(b).specText();
    ASSERT_EQ(bFirst, walkPrecedes(b, a))
        << with(b).specText() << " before " << with(a).specText();
    ++(aFirst ? first : bFirst ? second : equivalent);
  }
  // All three answers occurred, or the comparison would prove little.
  EXPECT_GT(first, 100);
  EXPECT_GT(second, 100);
  EXPECT_GT(equivalent, 100);
}

TEST(DivisibleArgsOrder, CostsNoMoreForHighIndices) {
  // Trying all indices would take hours for these rounds.
  for (std::uint32_t round = 0; round < 10000; ++round) {
    const DivisibleArgs low = with({{4294967294U, 2}, {4294967295U, round}});
    const DivisibleArgs high =
        with({{4294967294U, 2}, {4294967295U, round + 1}});
    ASSERT_TRUE(low.precedes(high));
    ASSERT_FALSE(high.precedes(low));
    ASSERT_FALSE(high.precedes(high));
  }
}

} // namespace
