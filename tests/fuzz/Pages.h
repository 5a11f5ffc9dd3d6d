// The files of a report without a disk, and whether names stay in their places.

#pragma once

#include "results/ConfigResults.h"

#include <map>
#include <string>

namespace corvane::fuzz {

/// Files by their path from the output directory.
using Files = std::map<std::string, std::string>;

/// What a report of \p job, which must have been ranked, consists of.
Files makeFiles(const ReportJob &job);

/// Checks that every name is where it belongs: a page has the form of the page
/// that harmless names make, its script has no escapes but ours, and each
/// configuration has pages of its own.
void checkNames(const ReportJob &job, const Files &files);

} // namespace corvane::fuzz
