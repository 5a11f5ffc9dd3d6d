// Makes the results table and the HTML report from a raw timing log.

#pragma once

#include "results/report/Pages.h"

#include "llvm/Support/Error.h"
#include "llvm/Support/raw_ostream.h"

#include <cstdint>
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

/// The results table: every sample again, by rank and time, outliers marked.
/// Writes it to a stream that must outlive it.
class ResultsTable {
public:
  /// Writes the header line.
  explicit ResultsTable(llvm::raw_ostream &stream);

  /// Writes the rows of a configuration and returns where they are.
  LineRange addRows(const RankedConfig &config);

private:
  llvm::raw_ostream &out;
  std::uint64_t nextRow = 1;
};

} // namespace corvane
