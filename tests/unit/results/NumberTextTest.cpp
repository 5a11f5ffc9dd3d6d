// Tests of numbers written as text and read back.

#include "results/NumberText.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

using namespace corvane;

static constexpr double infinity = std::numeric_limits<double>::infinity();
static constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
static constexpr double largest = std::numeric_limits<double>::max();

TEST(FixedText, HasTheDecimalsAskedFor) {
  EXPECT_EQ(fixedText(12.345, 3), "12.345");
  EXPECT_EQ(fixedText(0.0, 3), "0.000");
  EXPECT_EQ(fixedText(1234567.0, 1), "1234567.0");
  EXPECT_EQ(fixedText(2.0005, 3), "2.001"); // the double is a little larger
  EXPECT_EQ(fixedText(-1.25, 1), "-1.2");   // a tie goes to the even digit
}

TEST(FixedText, WritesTheLargestNumberWhole) {
  const std::string text = fixedText(-largest, 9);
  EXPECT_EQ(text.size(), 1U + 309 + 1 + 9);
  EXPECT_EQ(text.substr(0, 10), "-179769313");
}

TEST(FixedText, WritesZeroForWhatIsNoNumber) {
  EXPECT_EQ(fixedText(infinity, 1), "0.0");
  EXPECT_EQ(fixedText(-infinity, 3), "0.000");
  EXPECT_EQ(fixedText(notANumber, 1), "0.0");
}

TEST(GeneralText, HasSixSignificantDigitsWithoutTrailingZeros) {
  EXPECT_EQ(generalText(12.345), "12.345");
  EXPECT_EQ(generalText(1234.567), "1234.57");
  EXPECT_EQ(generalText(40.0), "40");
  EXPECT_EQ(generalText(0.0), "0");
  EXPECT_EQ(generalText(0.007), "0.007");
  EXPECT_EQ(generalText(123456.5), "123456");
}

TEST(GeneralText, HasAnExponentFromAMillionUpAndBelowATenThousandth) {
  EXPECT_EQ(generalText(999999.4), "999999");
  EXPECT_EQ(generalText(999999.5), "1e+06");
  EXPECT_EQ(generalText(1000000.0), "1e+06");
  EXPECT_EQ(generalText(0.0001), "0.0001");
  EXPECT_EQ(generalText(0.00009999), "9.999e-05");
  EXPECT_EQ(generalText(largest), "1.79769e+308");
  EXPECT_EQ(generalText(5e-324), "4.94066e-324");
}

TEST(GeneralText, WritesZeroForWhatIsNoNumber) {
  EXPECT_EQ(generalText(infinity), "0");
  EXPECT_EQ(generalText(notANumber), "0");
}

TEST(LeadingNumber, TakesTheLongestPrefix) {
  EXPECT_EQ(leadingNumber("12.345"), 12.345);
  EXPECT_EQ(leadingNumber("12.345us"), 12.345);
  EXPECT_EQ(leadingNumber("12.345\r"), 12.345);
  EXPECT_EQ(leadingNumber("1.5,7"), 1.5);
  EXPECT_EQ(leadingNumber("1.2.3"), 1.2);
  EXPECT_EQ(leadingNumber("1e3"), 1000.0);
  EXPECT_EQ(leadingNumber("1e"), 1.0);
  EXPECT_EQ(leadingNumber("2e+x"), 2.0);
  EXPECT_EQ(leadingNumber(".5"), 0.5);
  EXPECT_EQ(leadingNumber("5."), 5.0);
  EXPECT_EQ(leadingNumber("0x10"), 0.0);
}

TEST(LeadingNumber, SkipsLeadingBlanksAndOneSign) {
  EXPECT_EQ(leadingNumber(" \t\v\f\r7"), 7.0);
  EXPECT_EQ(leadingNumber("+7"), 7.0);
  EXPECT_EQ(leadingNumber("-7"), -7.0);
  EXPECT_EQ(leadingNumber("+-7"), 0.0);
  EXPECT_EQ(leadingNumber("++7"), 0.0);
  EXPECT_EQ(leadingNumber("- 7"), 0.0);
}

TEST(LeadingNumber, IsZeroWithoutANumber) {
  for (const char *text : {"", " ", "+", "-", ".", "e5", "abc", ",1", "x1"})
    EXPECT_EQ(leadingNumber(text), 0.0) << text;
  EXPECT_EQ(leadingNumber(std::string_view("\0001", 2)), 0.0);
}

TEST(LeadingNumber, KnowsNoInfinityAndNoNan) {
  for (const char *text : {"inf", "-inf", "INFINITY", "nan", "NaN(1)", "+inf"})
    EXPECT_EQ(leadingNumber(text), 0.0) << text;
}

TEST(LeadingNumber, IsZeroWhenNoDoubleCanHoldIt) {
  EXPECT_EQ(leadingNumber("1e999"), 0.0);
  EXPECT_EQ(leadingNumber("-1e999"), 0.0);
  EXPECT_EQ(leadingNumber("1e-999"), 0.0);
  EXPECT_EQ(leadingNumber("1e99999999999999999999"), 0.0);
  EXPECT_EQ(leadingNumber(std::string(400, '9')), 0.0);
}

TEST(LeadingNumber, DoesNotReadBeyondTheText) {
  EXPECT_EQ(leadingNumber(std::string_view("123456", 3)), 123.0);
}

// What C's own formatting writes; the tests run in the "C" locale.
static std::string printed(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.6g", value);
  return text.data();
}

static std::string writtenGeneral(double value) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writeGeneral(out, value);
  return out.str();
}

TEST(GeneralText, IsThatOfPrintfForTheTimesOfALog) {
  for (std::uint64_t nanoseconds = 1; nanoseconds < 3'000'000'000;
       nanoseconds += 1 + nanoseconds / 4001) {
    const double time = static_cast<double>(nanoseconds) / 1000.0;
    ASSERT_EQ(generalText(time), printed(time)) << nanoseconds;
  }
}

TEST(GeneralText, IsThatOfPrintfInTheMiddleBetweenTwoTexts) {
  for (double whole : {1.0, 10.0, 99.0, 1000.0, 12345.0, 99999.0, 123456.0})
    for (double part : {0.5, 0.25, 0.125, 0.0625, 0.03125, 0.000005, 0.9999995})
      for (double toward : {0.0, 1e9}) {
        const double middle = whole + part;
        ASSERT_EQ(generalText(middle), printed(middle)) << middle;
        const double beside = std::nextafter(middle, toward);
        ASSERT_EQ(generalText(beside), printed(beside)) << beside;
      }
}

TEST(GeneralText, IsThatOfPrintfAtPowersOfTen) {
  for (double power = 1e-6; power < 1e9; power *= 10.0)
    for (double value : {power, std::nextafter(power, 0.0),
                         std::nextafter(power, 1e10), power * 0.9999995})
      ASSERT_EQ(generalText(value), printed(value)) << value;
}

TEST(GeneralText, IsThatOfPrintfForNumbersOfAnyKind) {
  std::mt19937_64 random(1);
  for (int i = 0; i != 200'000; ++i) {
    const double value = std::ldexp(static_cast<double>(random()) * 0x1p-64,
                                    static_cast<int>(random() % 60) - 30);
    ASSERT_EQ(generalText(value), printed(value)) << value;
  }
}

TEST(WriteGeneral, WritesTheSameText) {
  for (double value : {0.0, 12.345, 1234.567, 1e6, 1e-5, -3.5, 0.0005})
    EXPECT_EQ(writtenGeneral(value), generalText(value));
}

TEST(LeadingNumber, IsTheNearestDoubleHoweverManyDigitsThereAre) {
  for (const char *text :
       {"0.1", "123.456", "8.41", "999999999999999", "9999999999999999",
        "9007199254740993", "0.000000000000001", "0.0000000000000001",
        "123456789012.345", "1234567890123.456", "00000000000000000001.5", "5.",
        ".5", "1.7976931348623157"})
    EXPECT_EQ(leadingNumber(text), std::strtod(text, nullptr)) << text;
}

TEST(LeadingNumber, IsTheNearestDoubleForAllTimesOfALog) {
  for (std::uint64_t nanoseconds = 1; nanoseconds < 9'000'000'000'000;
       nanoseconds += 1 + nanoseconds / 9001) {
    const std::string text =
        fixedText(static_cast<double>(nanoseconds) / 1000.0, 3);
    ASSERT_EQ(leadingNumber(text), std::strtod(text.c_str(), nullptr)) << text;
  }
}
