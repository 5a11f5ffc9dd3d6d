// What a flush reads back from the raw timing log. Data only.

#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// How every file names the application's own kernel among the versions.
inline constexpr std::string_view baselineName = "baseline";

/// The runs of one version in one configuration. Times are in microseconds and
/// never infinite or NaN; all but the samples is filled by computeStats.
struct VersionStats {
  double min = 0.0;
  double max = 0.0;
  double median =
      0.0;           ///< of an even number: the upper of the two in the middle
  double mean = 0.0; ///< outliers included
  double stddev = 0.0;          ///< of the population
  std::vector<double> samples;  ///< as read; ascending after computeStats
  std::vector<double> arrival;  ///< the samples in the order of the log
  std::vector<double> outliers; ///< ascending
};

/// The runs of one launch configuration: a kernel with its sizes. Sizes are the
/// texts of the log and never become numbers, so "64" and "064" differ.
struct ConfigResults {
  std::string kernel;
  std::string xGlobal;
  std::string yGlobal;
  std::string zGlobal;
  std::string xLocal;
  std::string yLocal;
  std::string zLocal;
  std::map<std::string, VersionStats, std::less<>> versions;
  /// The versions again, fastest mean first. Made by rankVersions, which moves
  /// the lists of times here; the map keeps the figures.
  std::vector<std::pair<std::string, VersionStats>> ranking;
};

/// The work of one flush.
struct ReportJob {
  std::string outputDirectory;
  std::string logPath;
  std::string installLocation; ///< normalised
  std::vector<ConfigResults> configs;
};

} // namespace corvane
