// Tests of the types that the names of kernel arguments mean, and of how values
// are shown.

#include "tuning/ElementType.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

using namespace corvane;
using Kind = ElementType::Kind;

TEST(ElementType, OfAPointerToAScalarOrVectorIsTheScalar) {
  EXPECT_EQ(elementTypeOf("float*"), (ElementType{Kind::Floating, 4}));
  EXPECT_EQ(elementTypeOf("float16*"), (ElementType{Kind::Floating, 4}));
  EXPECT_EQ(elementTypeOf("double3 *"), (ElementType{Kind::Floating, 8}));
  EXPECT_EQ(elementTypeOf("half*"), (ElementType{Kind::Floating, 2}));
  EXPECT_EQ(elementTypeOf("int2*"), (ElementType{Kind::Signed, 4}));
  EXPECT_EQ(elementTypeOf("uchar4*"), (ElementType{Kind::Unsigned, 1}));
  EXPECT_EQ(elementTypeOf("unsigned long*"), (ElementType{Kind::Unsigned, 8}));
}

TEST(ElementType, OfAnythingElseIsTheByte) {
  for (const char *name : {"", "float", "float**", "floats*", "float5*",
                           "struct particle*", "void*", "*", "image2d_t"})
    EXPECT_EQ(elementTypeOf(name), ElementType{}) << name;
}

static std::string halfText(std::uint16_t bits) {
  unsigned char bytes[2];
  std::memcpy(bytes, &bits, sizeof bits);
  return valueText({Kind::Floating, 2}, bytes);
}

TEST(ElementType, ReadsHalfPrecision) {
  EXPECT_EQ(halfText(0x3c00), "1");
  EXPECT_EQ(halfText(0xc000), "-2");
  EXPECT_EQ(halfText(0x7bff), "65504");
  EXPECT_EQ(halfText(0x0001), "5.96046448e-08");
  EXPECT_EQ(halfText(0x7c00), "inf");
}

template <typename Value>
static std::string textOf(ElementType type, Value value) {
  unsigned char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  return valueText(type, bytes);
}

TEST(ElementType, ShowsValuesThatDifferDifferently) {
  const ElementType single{Kind::Floating, 4};
  EXPECT_NE(textOf(single, 0.1F), textOf(single, std::nextafter(0.1F, 1.0F)));
  const ElementType wide{Kind::Floating, 8};
  EXPECT_NE(textOf(wide, 0.1), textOf(wide, std::nextafter(0.1, 1.0)));
  EXPECT_EQ(textOf(single, std::uint32_t{0x7fc00000}), "nan(0x7fc00000)");
  EXPECT_EQ(textOf(single, std::uint32_t{0x7fc00001}), "nan(0x7fc00001)");
}

TEST(ElementType, ShowsIntegersWithTheirSign) {
  EXPECT_EQ(textOf({Kind::Signed, 4}, std::int32_t{-7}), "-7");
  EXPECT_EQ(textOf({Kind::Unsigned, 4}, std::int32_t{-1}), "4294967295");
  EXPECT_EQ(textOf({Kind::Signed, 1}, std::int8_t{-128}), "-128");
  EXPECT_EQ(
      textOf({Kind::Unsigned, 8}, std::numeric_limits<std::uint64_t>::max()),
      "18446744073709551615");
}

TEST(ElementType, ShowsAPointWhateverTheLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
    GTEST_SKIP() << "there is no locale with a decimal comma";
  EXPECT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(textOf({Kind::Floating, 4}, 0.5F), "0.5");
  EXPECT_EQ(textOf({Kind::Floating, 8}, -1.25e-300), "-1.25e-300");
  std::setlocale(LC_NUMERIC, before.c_str());
}
