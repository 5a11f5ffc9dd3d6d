// The raw timing log: writes its rows, and reads the samples back.
//
// A row is the text of one run, nine fields with commas between them.

#pragma once

#include "results/LaunchKey.h"

#include "llvm/Support/Error.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// How every file names the application's own kernel among the versions.
inline constexpr std::string_view baselineName = "baseline";

/// The first line, with its line feed.
extern const std::string_view rawLogHeader;

/// The line of one run, with its line feed. \p fields is the launch's key,
/// joined with commas; an empty \p version is the application's kernel.
std::string rawLogRow(std::string_view fields, std::string_view version,
                      std::uint64_t nanoseconds);

/// A duration in microseconds with three decimals.
std::string timeText(std::uint64_t nanoseconds);

/// The times of one version, in microseconds; never infinite or NaN.
using Samples = std::vector<double>;

/// The runs of one launch configuration, as they stand in the log.
struct ConfigResults {
  LaunchKey launchKey;
  /// The samples of each version in the order of the log, by its name; ordered
  /// by the bytes of the names.
  std::map<std::string, Samples, std::less<>> versions;
};

/// Adds the configurations of a log to \p configs, in the order in which they
/// first occur. Lines that are no rows give garbled configurations. After an
/// error, what came before it has been added; a log that is missing is one.
llvm::Error readRawLog(const std::string &path,
                       std::vector<ConfigResults> &configs);

} // namespace corvane
