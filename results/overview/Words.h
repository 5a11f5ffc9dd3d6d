// Figures for people: times, ratios and parts as short texts.

#pragma once

#include "results/runs/RunLines.h"

#include <string>

namespace corvane {

/// A time in the unit that suits it, as "83.90 ms".
std::string durationText(double microseconds);

/// How many times faster, as "2.00x".
std::string gainText(double gain);

/// The gains that an interval of ratios of times allows, as "1.96x to 2.04x".
std::string gainText(const RatioInterval &ratio);

/// A part from 0 to 1 as "41 %"; what is above 0 and less than 1 % as "less
/// than 1 %".
std::string percentText(double part);

/// "1 launch", "2 launches".
std::string counted(std::uint64_t count, const char *one, const char *many);

} // namespace corvane
