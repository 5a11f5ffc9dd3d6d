// Makes the results table and the HTML report from a raw timing log.

#pragma once

#include "results/RawTimingLog.h"

#include "llvm/Support/Error.h"

#include <string>
#include <vector>

namespace corvane {

/// What a report is made from and where it goes.
struct ReportJob {
  std::string outputDirectory;
  std::string logPath;
  std::string installLocation; ///< where pages find their script; normalised
  std::vector<ConfigResults> configs;
};

/// \p location, which people copy from a command line with its quotes, as the
/// pages need it: "/" for each backslash, without one double quote at either
/// end.
std::string normalizedLocation(std::string location);

/// Creates the job's output directory, and in it the folder of the pages;
/// either may exist.
llvm::Error createOutputFolder(const ReportJob &job);
llvm::Error createPageFolder(const ReportJob &job);

/// Ranks the versions of each configuration and writes the table and all pages
/// into the folders, which must exist. Lets go of each configuration that is
/// written. A file that cannot be written is left out; the errors of all those,
/// each a FileError, are joined.
llvm::Error writeResultFiles(ReportJob &job);

} // namespace corvane
