// Formats and parses numbers by <charconv>: streams and C's functions obey the
// locale.

#include "results/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

using namespace corvane;

// The longest number has a sign, 309 digits, the point and the decimals.
using Buffer = std::array<char, 336>;

static std::string_view numberText(Buffer &buffer, double value,
                                   std::chars_format format, int precision) {
  char *const begin = buffer.data();
  const std::to_chars_result end =
      std::to_chars(begin, begin + buffer.size(),
                    std::isfinite(value) ? value : 0.0, format, precision);
  return {begin, static_cast<std::size_t>(end.ptr - begin)};
}

std::string corvane::fixedText(double value, int decimals) {
  Buffer buffer;
  return std::string(
      numberText(buffer, value, std::chars_format::fixed, decimals));
}

std::string corvane::generalText(double value) {
  Buffer buffer;
  return std::string(numberText(buffer, value, std::chars_format::general, 6));
}

void corvane::writeGeneral(llvm::raw_ostream &out, double value) {
  Buffer buffer;
  out << numberText(buffer, value, std::chars_format::general, 6);
}

static std::string_view withoutLeadingBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  return begin == std::string_view::npos ? "" : text.substr(begin);
}

// std::from_chars does not accept a plus sign.
static std::string_view withoutPlus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

double corvane::leadingNumber(std::string_view text) {
  text = withoutPlus(withoutLeadingBlanks(text));
  double value = 0.0;
  const std::from_chars_result end =
      std::from_chars(text.data(), text.data() + text.size(), value);
  return end.ec == std::errc() && std::isfinite(value) ? value : 0.0;
}
