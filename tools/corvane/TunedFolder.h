// A folder with the run records of tuning, and the profile made from them.

#pragma once

#include "results/profile/ProfileMerge.h"
#include "results/runs/RunReader.h"

#include "llvm/Support/Error.h"

#include <set>
#include <string>
#include <vector>

namespace corvane {

/// \p folder as an absolute path.
std::string absoluteFolder(const std::string &folder);

/// The names of the run folders in it; none if there are none.
std::set<std::string> runNames(const std::string &folder);

/// The records of the runs with these names. Says which could not be read, and
/// the first line of each that could not be used.
std::vector<RunRecord> readRuns(const std::string &folder,
                                const std::set<std::string> &names);

/// Replaces the profile in the folder in one step: a program that reads it at
/// the same time gets the old one or the new one, whole.
llvm::Error writeProfile(const std::string &folder, const Profile &profile);

} // namespace corvane
