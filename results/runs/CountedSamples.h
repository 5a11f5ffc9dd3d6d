// The samples of a record that count.

#pragma once

#include "results/runs/RunLines.h"

#include "llvm/ADT/ArrayRef.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace corvane {

/// The time of a sample by those of its runs, at least one: the geometric mean
/// of the quicker two thirds. A third, rounded down, may have been disturbed.
double sampleOf(std::vector<double> runs);

/// The samples of one version, each with its runs: microseconds, in the order
/// of running.
using SampleRuns = std::vector<std::vector<double>>;

/// How many runs the sample with the most has; 0 without samples.
std::size_t passesOf(const SampleRuns &runs);

/// The samples by the first \p passes runs of each. Versions are compared by
/// the same number of passes, for the load may have changed from one to the
/// next.
std::vector<double> samplesAfter(std::size_t passes, const SampleRuns &runs);

/// The runs that count, by version, of one configuration in the order of the
/// record. Warm-ups do not count, nor do runs that repeat a sample that is not
/// there.
std::map<std::string, SampleRuns> countedRuns(llvm::ArrayRef<SampleLine> lines);

} // namespace corvane
