// Tests of splitting a spec, and of reading and writing its numbers.
#include "variants/VariantName.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using corvane::itemText;
using corvane::readNumber;
using corvane::readNumbers;
using corvane::splitOn;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

TEST(SplitOn, GivesTheTextBetweenSeparators) {
  EXPECT_THAT(splitOn("my_kernel_coarsed_g0S4", '_'),
              ElementsAre("my", "kernel", "coarsed", "g0S4"));
  EXPECT_THAT(splitOn("whole", '_'), ElementsAre("whole"));
}

TEST(SplitOn, GivesAnEmptyPieceBetweenConsecutiveSeparators) {
  EXPECT_THAT(splitOn("a__b", '_'), ElementsAre("a", "", "b"));
}

TEST(SplitOn, GivesAnEmptyPieceBeforeALeadingSeparator) {
  EXPECT_THAT(splitOn("_a", '_'), ElementsAre("", "a"));
}

TEST(SplitOn, GivesNoPieceAfterATrailingSeparator) {
  EXPECT_THAT(splitOn("a_", '_'), ElementsAre("a"));
  EXPECT_THAT(splitOn("a__", '_'), ElementsAre("a", ""));
  EXPECT_THAT(splitOn("_", '_'), ElementsAre(""));
}

TEST(SplitOn, GivesNoPiecesOfAnEmptyText) {
  EXPECT_THAT(splitOn("", '_'), IsEmpty());
}

TEST(ReadNumber, ReadsDigitsUpToTheFirstOtherCharacter) {
  EXPECT_EQ(readNumber("42"), 42);
  EXPECT_EQ(readNumber("0042"), 42);
  EXPECT_EQ(readNumber("4X2"), 4);
  EXPECT_EQ(readNumber("4 2"), 4);
}

TEST(ReadNumber, SkipsLeadingWhiteSpace) {
  EXPECT_EQ(readNumber(" \t\n\v\f\r7"), 7);
  EXPECT_EQ(readNumber(" -7"), -7);
  EXPECT_EQ(readNumber("\b7"), 0);
}

TEST(ReadNumber, TakesOneSignDirectlyBeforeTheDigits) {
  EXPECT_EQ(readNumber("-12"), -12);
  EXPECT_EQ(readNumber("+12"), 12);
  EXPECT_EQ(readNumber("+-12"), 0);
  EXPECT_EQ(readNumber("-+12"), 0);
  EXPECT_EQ(readNumber("- 12"), 0);
}

TEST(ReadNumber, ReadsATextWithoutDigitsAsZero) {
  EXPECT_EQ(readNumber(""), 0);
  EXPECT_EQ(readNumber("  "), 0);
  EXPECT_EQ(readNumber("-"), 0);
  EXPECT_EQ(readNumber("X9"), 0);
}

TEST(ReadNumber, ReadsTheWholeRangeOfInt) {
  EXPECT_EQ(readNumber("2147483647"), most);
  EXPECT_EQ(readNumber("-2147483648"), least);
}

TEST(ReadNumber, StopsAtTheEndsOfTheRangeOfInt) {
  EXPECT_EQ(readNumber("2147483648"), most);
  EXPECT_EQ(readNumber("-2147483649"), least);
  EXPECT_EQ(readNumber("4294967296"), most);
  EXPECT_EQ(readNumber("99999999999999999999999999999999"), most);
  EXPECT_EQ(readNumber("-99999999999999999999999999999999"), least);
}

TEST(ReadNumbers, ReadsEachPieceInOrder) {
  EXPECT_THAT(readNumbers("1S2S1S8"), ElementsAre(1, 2, 1, 8));
}

TEST(ReadNumbers, GivesAnEmptyListForAnEmptyText) {
  EXPECT_THAT(readNumbers(""), IsEmpty());
}

TEST(ReadNumbers, IgnoresOneTrailingSeparator) {
  EXPECT_THAT(readNumbers("0S"), ElementsAre(0));
}

TEST(ReadNumbers, ReadsAnEmptyPieceAsZero) {
  EXPECT_THAT(readNumbers("0SS4"), ElementsAre(0, 0, 4));
  EXPECT_THAT(readNumbers("S4"), ElementsAre(0, 4));
}

TEST(ReadNumbers, KeepsTheBitPatternOfANegativeNumber) {
  EXPECT_THAT(readNumbers("-1S4"), ElementsAre(4294967295U, 4U));
}

TEST(ItemText, JoinsTheNumbersAfterTheLetter) {
  EXPECT_EQ(itemText('g', {0, 4}), "g0S4");
  EXPECT_EQ(itemText('r', {3}), "r3");
}

TEST(ItemText, IsTheLetterAloneWithoutNumbers) {
  EXPECT_EQ(itemText('d', {}), "d");
}

TEST(ItemText, WritesNumbersUnsigned) {
  EXPECT_EQ(itemText('g', {4294967295U, 4}), "g4294967295S4");
}

} // namespace
