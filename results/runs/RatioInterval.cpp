// Computes the limits of the interval from order statistics.
//
// Disturbances only ever add to a time. So a limit compares a short time of one
// side, which few disturbances reach, with as long a time of the other as the
// probability asks for: longer ones may all come from disturbances.

#include "results/runs/RatioInterval.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace corvane;

using Samples = std::vector<double>;

// Which of \p count samples in ascending order, from 1, is the short time.
static std::size_t shortRank(std::size_t count) { return (count + 7) / 8; }

// The logarithm of the probability that all of \p longer samples come before
// the sample at rank \p r of \p shorter, when they do not differ.
static double logOfAllBefore(std::size_t longer, std::size_t shorter,
                             std::size_t r) {
  double sum = 0.0;
  for (std::size_t i = 1; i <= longer; ++i)
    sum += std::log(static_cast<double>(r - 1 + i) /
                    static_cast<double>(shorter + i));
  return sum;
}

// The least rank s for which the s-th of \p longer samples comes before the
// r-th of \p shorter with a probability of at most \p tail, when they do not
// differ; none if not even the last one does.
static std::optional<std::size_t>
longRank(std::size_t longer, std::size_t shorter, std::size_t r, double tail) {
  // The logarithm of the probability that exactly j come before; then, from
  // one j to the next lower, by the quotient of the binomial coefficients.
  double logExactly = logOfAllBefore(longer, shorter, r);
  double atLeast = 0.0;
  std::optional<std::size_t> rank;
  for (std::size_t j = longer; j != 0; --j) {
    atLeast += std::exp(logExactly);
    if (atLeast > tail)
      break;
    rank = j;
    logExactly +=
        std::log(static_cast<double>(j) / static_cast<double>(j + r - 1)) +
        std::log(static_cast<double>(longer - j + shorter - r + 1) /
                 static_cast<double>(longer - j + 1));
  }
  return rank;
}

// The limit that the ratio of the first to the second exceeds with a
// probability of at most \p tail. Both ascend.
static std::optional<double> upperLimit(const Samples &first,
                                        const Samples &second, double tail) {
  const std::size_t r = shortRank(second.size());
  const std::optional<std::size_t> s =
      longRank(first.size(), second.size(), r, tail);
  if (!s)
    return std::nullopt;
  return first[*s - 1] / second[r - 1];
}

static Samples sorted(llvm::ArrayRef<double> samples) {
  Samples copy(samples.begin(), samples.end());
  // A ratio needs times above zero: 0 becomes the least number above it.
  for (double &sample : copy)
    sample = std::max(sample, std::numeric_limits<double>::min());
  std::sort(copy.begin(), copy.end());
  return copy;
}

std::optional<RatioInterval>
corvane::ratioInterval(llvm::ArrayRef<double> version,
                       llvm::ArrayRef<double> original, double tail) {
  if (version.empty() || original.empty())
    return std::nullopt;
  const Samples times = sorted(version), originals = sorted(original);
  const std::optional<double> high = upperLimit(times, originals, tail);
  const std::optional<double> inverseOfLow = upperLimit(originals, times, tail);
  if (!high || !inverseOfLow)
    return std::nullopt;
  // Times that lie very far apart have a ratio that no double holds.
  constexpr double most = std::numeric_limits<double>::max();
  return RatioInterval{std::min(1.0 / *inverseOfLow, most),
                       std::min(*high, most)};
}
