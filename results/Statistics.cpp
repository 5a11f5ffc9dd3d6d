// Computes medians, means and deviations, and sorts versions by their means.

#include "results/Statistics.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

using namespace corvane;

// Of an even number of samples the upper one in the middle; the two are not
// averaged, so that the median is always a time that was measured.
static double upperMedian(const Samples &sorted) {
  return sorted[sorted.size() / 2];
}

static Samples findOutliers(const Samples &sorted) {
  Samples outliers;
  std::copy_if(
      sorted.begin(), sorted.end(), std::back_inserter(outliers),
      [&](double sample) { return isOutlier(sample, sorted.front()); });
  return outliers;
}

static double meanOf(const Samples &samples) {
  return std::accumulate(samples.begin(), samples.end(), 0.0) /
         static_cast<double>(samples.size());
}

static double populationDeviation(const Samples &samples, double mean) {
  double squares = 0.0;
  for (double sample : samples)
    squares += (mean - sample) * (mean - sample);
  return std::sqrt(squares / static_cast<double>(samples.size()));
}

VersionStats corvane::computeStats(Samples samples) {
  VersionStats stats;
  if (samples.empty())
    return stats;
  stats.arrival = samples;
  std::sort(samples.begin(), samples.end());
  stats.min = samples.front();
  stats.max = samples.back();
  stats.median = upperMedian(samples);
  stats.outliers = findOutliers(samples);
  stats.mean = meanOf(samples);
  stats.stddev = populationDeviation(samples, stats.mean);
  stats.samples = std::move(samples);
  return stats;
}

RankedConfig corvane::rankVersions(ConfigResults config) {
  RankedConfig ranked;
  ranked.launchKey = std::move(config.launchKey);
  ranked.ranking.reserve(config.versions.size());
  for (auto &[name, samples] : config.versions)
    ranked.ranking.emplace_back(name, computeStats(std::move(samples)));
  std::stable_sort(ranked.ranking.begin(), ranked.ranking.end(),
                   [](const auto &left, const auto &right) {
                     return left.second.mean < right.second.mean;
                   });
  return ranked;
}

const VersionStats *RankedConfig::baseline() const {
  const auto found =
      std::find_if(ranking.begin(), ranking.end(), [](const auto &version) {
        return version.first == baselineName;
      });
  return found == ranking.end() ? nullptr : &found->second;
}

std::size_t RankedConfig::sampleCount() const {
  std::size_t fewest = ranking.empty() ? 0 : ranking[0].second.arrival.size();
  for (const auto &[name, stats] : ranking)
    fewest = std::min(fewest, stats.arrival.size());
  return fewest;
}
