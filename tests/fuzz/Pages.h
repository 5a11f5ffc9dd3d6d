// Makes the files of a report in memory, and checks where names are in them.

#pragma once

#include "results/Statistics.h"

#include <map>
#include <string>
#include <vector>

namespace corvane::fuzz {

/// Files by their path from the output directory.
using Files = std::map<std::string, std::string>;

/// The files of a report of \p configs whose pages load their script from
/// \p installLocation.
Files makeFiles(const std::vector<RankedConfig> &configs,
                const std::string &installLocation);

/// Checks that every name is where it belongs: a page has the form of the page
/// that harmless names make, its script has no escapes but ours, and each
/// configuration has pages of its own.
void checkNames(const std::vector<RankedConfig> &configs,
                const std::string &installLocation, const Files &files);

} // namespace corvane::fuzz
