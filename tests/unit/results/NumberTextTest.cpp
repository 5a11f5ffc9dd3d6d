// Numbers to text and back.

#include "results/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace corvane;

static constexpr double infinity = std::numeric_limits<double>::infinity();
static constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
static constexpr double largest = std::numeric_limits<double>::max();

TEST(FixedText, HasTheDecimalsAskedFor) {
  EXPECT_EQ(fixedText(12.345, 3), "12.345");
  EXPECT_EQ(fixedText(0.0, 3), "0.000");
  EXPECT_EQ(fixedText(1234567.0, 1), "1234567.0");
  EXPECT_EQ(fixedText(2.0005, 3), "2.001"); // the double is a little above
  EXPECT_EQ(fixedText(-1.25, 1), "-1.2");   // a tie goes to the even digit
}

TEST(FixedText, HasRoomForTheLargestNumber) {
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
