// A folder with the run records of tuning, and the profile made from them.

#pragma once

#include "results/profile/ProfileMerge.h"
#include "results/runs/RunReader.h"

#include "llvm/ADT/Twine.h"
#include "llvm/Support/Error.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace corvane {

/// The most bytes of a record that are read: enough for millions of samples.
inline constexpr std::uint64_t recordLimit = std::uint64_t(1) << 30;

/// The path of what lies in \p folder under these names, one in the other.
std::string joined(const std::string &folder, const llvm::Twine &a,
                   const llvm::Twine &b = "", const llvm::Twine &c = "");

/// \p folder as an absolute path.
std::string absoluteFolder(const std::string &folder);

/// The names of the run folders in it; none if there are none.
std::set<std::string> runNames(const std::string &folder);

/// The record in \p file. Says why it could not be read, or its first line that
/// could not be used.
std::optional<RunRecord> readRecord(const std::string &file);

/// The records of the runs with these names that could be read, by readRecord.
std::vector<RunRecord> readRuns(const std::string &folder,
                                const std::set<std::string> &names);

/// Replaces the profile in the folder in one step: a program that reads it at
/// the same time gets the old one or the new one, whole.
llvm::Error writeProfile(const std::string &folder, const Profile &profile);

} // namespace corvane
