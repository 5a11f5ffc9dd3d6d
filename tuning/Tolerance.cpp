// Parses the value of CORVANE_VERIFY.

#include "tuning/Tolerance.h"

#include <charconv>

using namespace corvane;

std::optional<Tolerance> corvane::parseTolerance(llvm::StringRef text) {
  if (text == "exact")
    return Tolerance{};
  if (text == "off")
    return Tolerance{Tolerance::Mode::Off, 0.0};
  double bound = 0.0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), bound);
  // A comparison with NaN is false, so NaN is refused as well.
  const bool usable = bound > 0.0 && bound < 1.0;
  if (error != std::errc() || end != text.end() || !usable)
    return std::nullopt;
  return Tolerance{Tolerance::Mode::Bound, bound};
}
