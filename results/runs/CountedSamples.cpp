// Puts runs that repeat a sample together with it.

#include "results/runs/CountedSamples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

using namespace corvane;

double corvane::sampleOf(std::vector<double> runs) {
  if (runs.empty())
    return 0.0;
  if (runs.size() == 1)
    return runs.front();
  const auto counted =
      static_cast<std::ptrdiff_t>(runs.size() - runs.size() / 3);
  std::nth_element(runs.begin(), runs.begin() + (counted - 1), runs.end());
  double sum = 0.0;
  // A time of 0 has no logarithm.
  for (auto run = runs.begin(); run != runs.begin() + counted; ++run)
    sum += std::log(std::max(*run, std::numeric_limits<double>::min()));
  return std::exp(sum / static_cast<double>(counted));
}

std::size_t corvane::passesOf(const SampleRuns &runs) {
  std::size_t most = 0;
  for (const std::vector<double> &sample : runs)
    most = std::max(most, sample.size());
  return most;
}

std::vector<double> corvane::samplesAfter(std::size_t passes,
                                          const SampleRuns &runs) {
  std::vector<double> samples;
  for (const std::vector<double> &sample : runs) {
    const auto count =
        static_cast<std::ptrdiff_t>(std::min(passes, sample.size()));
    samples.push_back(sampleOf({sample.begin(), sample.begin() + count}));
  }
  return samples;
}

std::map<std::string, SampleRuns>
corvane::countedRuns(llvm::ArrayRef<SampleLine> lines) {
  std::map<std::string, SampleRuns> runs;
  for (const SampleLine &line : lines) {
    if (line.warmUp)
      continue;
    if (!line.repeats) {
      runs[line.version].push_back({line.microseconds});
      continue;
    }
    const auto taken = runs.find(line.version);
    if (taken != runs.end() && *line.repeats < taken->second.size())
      taken->second[*line.repeats].push_back(line.microseconds);
  }
  return runs;
}
