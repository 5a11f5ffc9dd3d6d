// Writes figures with as many digits as people want to read.

#include "results/overview/Words.h"

#include "results/NumberText.h"

#include <cmath>

using namespace corvane;

std::string corvane::durationText(double microseconds) {
  if (microseconds < 1e3)
    return fixedText(microseconds, 1) + " us";
  if (microseconds < 1e6)
    return fixedText(microseconds / 1e3, 2) + " ms";
  return fixedText(microseconds / 1e6, 2) + " s";
}

std::string corvane::gainText(double gain) { return fixedText(gain, 2) + "x"; }

std::string corvane::gainText(const RatioInterval &ratio) {
  const std::string most =
      ratio.low > 0.0 ? gainText(1.0 / ratio.low) : std::string("any");
  return gainText(1.0 / ratio.high) + " to " + most;
}

std::string corvane::percentText(double part) {
  const long percent = std::lround(100.0 * part);
  if (percent == 0 && part > 0.0)
    return "less than 1 %";
  return std::to_string(percent) + " %";
}

std::string corvane::counted(std::uint64_t count, const char *one,
                             const char *many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}
