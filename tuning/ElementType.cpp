// Reads the names of OpenCL C's scalar types, and the values of elements.

#include "tuning/ElementType.h"

#include "llvm/Support/Format.h"
#include "llvm/Support/raw_ostream.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

using namespace corvane;

static std::optional<ElementType> scalarType(llvm::StringRef name) {
  using Kind = ElementType::Kind;
  static constexpr struct {
    llvm::StringLiteral name;
    ElementType type;
  } scalars[] = {
      {"half", {Kind::Floating, 2}},   {"float", {Kind::Floating, 4}},
      {"double", {Kind::Floating, 8}}, {"char", {Kind::Signed, 1}},
      {"short", {Kind::Signed, 2}},    {"int", {Kind::Signed, 4}},
      {"long", {Kind::Signed, 8}},     {"uchar", {Kind::Unsigned, 1}},
      {"ushort", {Kind::Unsigned, 2}}, {"uint", {Kind::Unsigned, 4}},
      {"ulong", {Kind::Unsigned, 8}},
  };
  for (const auto &scalar : scalars)
    if (name == scalar.name)
      return scalar.type;
  return std::nullopt;
}

// "float4" is a vector of "float"; no scalar's name ends with a digit.
static llvm::StringRef withoutVectorWidth(llvm::StringRef name) {
  for (llvm::StringRef width : {"16", "2", "3", "4", "8"})
    if (name.consume_back(width))
      break;
  return name;
}

ElementType corvane::elementTypeOf(llvm::StringRef typeName) {
  llvm::StringRef pointee = typeName.trim();
  if (!pointee.consume_back("*"))
    return {};
  pointee = pointee.rtrim();
  // Some compilers spell the short names out.
  const bool isUnsigned = pointee.consume_front("unsigned ");
  std::optional<ElementType> type = scalarType(withoutVectorWidth(pointee));
  if (!type)
    return {};
  if (isUnsigned)
    type->kind = ElementType::Kind::Unsigned;
  return *type;
}

template <typename Value> static Value readAs(const unsigned char *bytes) {
  Value value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// IEEE 754 binary16: a sign bit, 5 bits of exponent, 10 bits of fraction.
static double halfValue(std::uint16_t bits) {
  const int exponent = (bits >> 10) & 0x1f;
  const int fraction = bits & 0x3ff;
  double magnitude = 0.0;
  if (exponent == 0)
    magnitude = std::ldexp(fraction, -24);
  else if (exponent == 0x1f)
    magnitude = fraction ? std::numeric_limits<double>::quiet_NaN()
                         : std::numeric_limits<double>::infinity();
  else
    magnitude = std::ldexp(fraction + 0x400, exponent - 25);
  return (bits & 0x8000) ? -magnitude : magnitude;
}

double corvane::floatingValue(ElementType type, const unsigned char *bytes) {
  switch (type.size) {
  case 2:
    return halfValue(readAs<std::uint16_t>(bytes));
  case 4:
    return static_cast<double>(readAs<float>(bytes));
  default:
    return readAs<double>(bytes);
  }
}

static std::uint64_t unsignedBits(ElementType type,
                                  const unsigned char *bytes) {
  switch (type.size) {
  case 1:
    return *bytes;
  case 2:
    return readAs<std::uint16_t>(bytes);
  case 4:
    return readAs<std::uint32_t>(bytes);
  default:
    return readAs<std::uint64_t>(bytes);
  }
}

static std::int64_t signedValue(ElementType type, const unsigned char *bytes) {
  switch (type.size) {
  case 1:
    return static_cast<signed char>(*bytes);
  case 2:
    return readAs<std::int16_t>(bytes);
  case 4:
    return readAs<std::int32_t>(bytes);
  default:
    return readAs<std::int64_t>(bytes);
  }
}

// As C's "%g" does, but with a point in every locale.
static void writeDigits(llvm::raw_ostream &text, double value, int digits) {
  std::array<char, 32> number; // 17 digits, two signs, a point and "e308"
  const auto [end, error] =
      std::to_chars(number.data(), number.data() + number.size(), value,
                    std::chars_format::general, digits);
  text << llvm::StringRef(number.data(),
                          static_cast<std::size_t>(end - number.data()));
}

// NaNs of different payloads look alike as numbers.
static void writeFloating(llvm::raw_ostream &text, ElementType type,
                          const unsigned char *bytes) {
  const double value = floatingValue(type, bytes);
  if (std::isnan(value))
    text << "nan(" << llvm::format_hex(unsignedBits(type, bytes), 0) << ")";
  else
    writeDigits(text, value, type.size == 8 ? 17 : 9);
}

std::string corvane::valueText(ElementType type, const unsigned char *bytes) {
  std::string written;
  llvm::raw_string_ostream text(written);
  switch (type.kind) {
  case ElementType::Kind::Unsigned:
    text << unsignedBits(type, bytes);
    break;
  case ElementType::Kind::Signed:
    text << signedValue(type, bytes);
    break;
  case ElementType::Kind::Floating:
    writeFloating(text, type, bytes);
    break;
  }
  text.flush();
  return written;
}
