// An interval for the ratio of two times, whatever their distribution is.

#pragma once

#include "results/runs/RunLines.h"

#include "llvm/ADT/ArrayRef.h"

#include <optional>

namespace corvane {

/// The Hodges-Lehmann interval, which belongs to the rank-sum test of Wilcoxon,
/// Mann and Whitney, for the ratio of a version's median time to the
/// original's: the logarithms of the two are taken to have distributions of the
/// same shape, whatever that is.
///
/// Either limit misses the ratio with a probability of at most \p tail, which
/// is below one half. None when there are too few samples for that. Samples are
/// finite and at least 0, in any order.
std::optional<RatioInterval> ratioInterval(llvm::ArrayRef<double> version,
                                           llvm::ArrayRef<double> original,
                                           double tail);

} // namespace corvane
