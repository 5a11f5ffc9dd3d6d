// Plain sums over sorted samples.

#include "results/Statistics.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

using namespace corvane;

using Samples = std::vector<double>;

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

void corvane::computeStats(VersionStats &stats) {
  Samples &samples = stats.samples;
  if (samples.empty())
    return;
  stats.arrival = samples;
  std::sort(samples.begin(), samples.end());
  stats.min = samples.front();
  stats.max = samples.back();
  stats.median = upperMedian(samples);
  stats.outliers = findOutliers(samples);
  stats.mean = meanOf(samples);
  stats.stddev = populationDeviation(samples, stats.mean);
}

void corvane::rankVersions(ConfigResults &config) {
  config.ranking.reserve(config.versions.size());
  for (auto &[name, stats] : config.versions) {
    computeStats(stats);
    // The figures are copied, the lists move.
    config.ranking.emplace_back(name, std::move(stats));
  }
  std::stable_sort(config.ranking.begin(), config.ranking.end(),
                   [](const auto &left, const auto &right) {
                     return left.second.mean < right.second.mean;
                   });
}
