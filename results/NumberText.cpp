// Numbers as text without streams or C formatting, which obey the locale.

#include "results/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <system_error>

using namespace corvane;

static constexpr std::array<double, 16> powersOfTen = {
    1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

namespace {

/// Six digits, a point, and zeros before them.
class GeneralText {
public:
  std::string_view view() const {
    return {begin, static_cast<std::size_t>(room.data() + room.size() - begin)};
  }
  void addInFront(char c) { *--begin = c; }

private:
  std::array<char, 16> room;
  char *begin = room.data() + room.size();
};

} // namespace

// Makes the text of the times that occur, most of which have no more than six
// digits anyway. False for all others: what needs an exponent, and what lies so
// near the middle between two texts that a product with a rounding error cannot
// tell the nearer one.
static bool makeUsualText(double value, GeneralText &text) {
  if (!(value >= 0.001 && value < 999999.0))
    return false;
  std::size_t decimals = 5;
  for (std::size_t power = 1; value >= powersOfTen[power]; ++power)
    --decimals;
  for (std::size_t power = 0; value * powersOfTen[power] < 1.0; ++power)
    ++decimals;
  const double scaled = value * powersOfTen[decimals];
  auto digits = static_cast<std::uint32_t>(scaled);
  const double rest = scaled - digits;
  if (std::abs(rest - 0.5) < 1e-6)
    return false;
  if (rest > 0.5)
    ++digits;
  for (; decimals != 0 && digits % 10 == 0; digits /= 10)
    --decimals;
  for (; decimals != 0; digits /= 10, --decimals) {
    text.addInFront(static_cast<char>('0' + digits % 10));
    if (decimals == 1)
      text.addInFront('.');
  }
  do
    text.addInFront(static_cast<char>('0' + digits % 10));
  while ((digits /= 10) != 0);
  return true;
}

static std::string numberText(double value, std::chars_format format,
                              int precision) {
  if (!std::isfinite(value))
    value = 0.0;
  // The longest number has a sign, 309 digits, the point and the decimals.
  std::array<char, 336> text{};
  char *const begin = text.data();
  const std::to_chars_result end =
      std::to_chars(begin, begin + text.size(), value, format, precision);
  return std::string(begin, end.ptr);
}

std::string corvane::fixedText(double value, int decimals) {
  return numberText(value, std::chars_format::fixed, decimals);
}

std::string corvane::generalText(double value) {
  GeneralText text;
  if (makeUsualText(value, text))
    return std::string(text.view());
  return numberText(value, std::chars_format::general, 6);
}

void corvane::writeGeneral(llvm::raw_ostream &out, double value) {
  GeneralText text;
  if (makeUsualText(value, text))
    out << text.view();
  else
    out << numberText(value, std::chars_format::general, 6);
}

// Digits and perhaps a point between them, which is what the log is full of.
// Up to 15 digits and any power of ten up to 10^22 are numbers that a double
// holds exactly, so that one division rounds once, as it has to be.
static std::optional<double> plainNumber(std::string_view text) {
  std::uint64_t digits = 0;
  std::size_t pointAt = text.size();
  for (std::size_t i = 0; i != text.size(); ++i) {
    if (text[i] == '.' && pointAt == text.size())
      pointAt = i;
    else if (text[i] >= '0' && text[i] <= '9')
      digits = 10 * digits + static_cast<std::uint64_t>(text[i] - '0');
    else
      return std::nullopt;
  }
  const bool hasPoint = pointAt != text.size();
  const std::size_t decimals = hasPoint ? text.size() - pointAt - 1 : 0;
  const std::size_t digitCount = text.size() - (hasPoint ? 1 : 0);
  if (digitCount == 0 || digitCount > 15)
    return std::nullopt;
  return static_cast<double>(digits) / powersOfTen[decimals];
}

static std::string_view withoutLeadingBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  return begin == std::string_view::npos ? "" : text.substr(begin);
}

// std::from_chars knows no plus sign.
static std::string_view withoutPlus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

double corvane::leadingNumber(std::string_view text) {
  if (const std::optional<double> plain = plainNumber(text))
    return *plain;
  text = withoutPlus(withoutLeadingBlanks(text));
  double value = 0.0;
  const std::from_chars_result end =
      std::from_chars(text.data(), text.data() + text.size(), value);
  return end.ec == std::errc() && std::isfinite(value) ? value : 0.0;
}
