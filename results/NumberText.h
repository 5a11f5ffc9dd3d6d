// Numbers as text, the same bytes whatever locale the application has set.

#pragma once

#include "llvm/Support/raw_ostream.h"

#include <string>
#include <string_view>

namespace corvane {

/// Fixed notation with \p decimals (at most 9) digits after the point.
/// Infinities and NaNs are written as zero.
std::string fixedText(double value, int decimals);

/// Six significant digits without trailing zeros, with an exponent where C's
/// "%g" has one. Infinities and NaNs are written as zero.
std::string generalText(double value);

/// Writes the same, without a string for each of many numbers.
void writeGeneral(llvm::raw_ostream &out, double value);

/// The number that \p text starts with, after blanks and perhaps a sign; the
/// rest is ignored. 0.0 if there is none or no double can hold it; infinities
/// and NaNs are no numbers.
double leadingNumber(std::string_view text);

} // namespace corvane
