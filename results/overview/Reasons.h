// Says why: of each version that it is used or not, of runs without a gain what
// stood in their way.

#pragma once

#include "results/overview/Overview.h"

#include <string>
#include <vector>

namespace corvane {

/// Why this version is the one to use or is not, with the values that decided.
/// Empty for the original.
std::string whyText(const OverviewConfiguration &configuration,
                    const OverviewVersion &version);

/// Why a configuration runs the version that it does, in one line.
std::string whyText(const OverviewConfiguration &configuration);

/// One sentence that is true of the whole: what a profile saves, or why it
/// saves nothing. Never empty.
std::string remarkOn(const Overview &overview);

/// The configurations with the most kernel time that run the original, at most
/// \p most of them, each in a line with what stood in its way.
std::vector<std::string> obstaclesIn(const Overview &overview,
                                     std::size_t most);

} // namespace corvane
