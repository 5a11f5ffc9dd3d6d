// Computes the limits of the interval from the ratios of all pairs of samples.
//
// If the versions do not differ, the number of pairs in which the version's
// time is the longer one has the distribution of the rank-sum statistic. As
// many of the greatest ratios as that number is unlikely to fall below are left
// out, and the next one is the upper limit.

#include "results/runs/RatioInterval.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

using namespace corvane;

using Samples = std::vector<double>;

// Up to this many samples of each the distribution is computed exactly; for
// more its normal approximation is good.
static constexpr std::size_t mostExactly = 40;

// How many orders of \p first and \p second samples have 0, 1, 2 and so on
// pairs, up to half of all, in which the first one's sample comes later. The
// greatest sample of all is either of the first ones, and comes after all \p
// second, or it is one of the second ones.
static std::vector<double> countOrders(std::size_t first, std::size_t second) {
  const std::size_t pairs = first * second / 2 + 1;
  std::vector<std::vector<double>> orders(first + 1,
                                          std::vector<double>(pairs, 0.0));
  for (std::vector<double> &each : orders)
    each[0] = 1.0;
  for (std::size_t j = 1; j <= second; ++j)
    for (std::size_t i = 1; i <= first; ++i)
      for (std::size_t k = j; k < pairs; ++k)
        orders[i][k] += orders[i - 1][k - j];
  return orders[first];
}

// The number of values below which the statistic stays with a probability of at
// most \p tail: 0 if even the least value is likelier.
static std::size_t exactCount(std::size_t first, std::size_t second,
                              double tail) {
  double all = 1.0;
  for (std::size_t i = 1; i <= first; ++i)
    all *= static_cast<double>(second + i) / static_cast<double>(i);
  double sum = 0.0;
  std::size_t count = 0;
  for (const double orders : countOrders(first, second)) {
    sum += orders / all;
    if (sum > tail)
      break;
    ++count;
  }
  return count;
}

static double normalTail(double deviations) {
  return 0.5 * std::erfc(deviations / std::sqrt(2.0));
}

// The same by the normal distribution with the mean and variance of the
// statistic.
static std::size_t approximateCount(double first, double second, double tail) {
  double low = 0.0, high = 40.0;
  for (int step = 0; step != 60; ++step) {
    const double middle = (low + high) / 2.0;
    (normalTail(middle) > tail ? low : high) = middle;
  }
  const double deviation =
      std::sqrt(first * second * (first + second + 1.0) / 12.0);
  const double count = first * second / 2.0 - high * deviation;
  return count > 0.0 ? static_cast<std::size_t>(count) : 0;
}

static std::size_t unlikelyCount(std::size_t first, std::size_t second,
                                 double tail) {
  if (first <= mostExactly && second <= mostExactly)
    return exactCount(first, second, tail);
  return approximateCount(static_cast<double>(first),
                          static_cast<double>(second), tail);
}

// In how many pairs the ratio of the first to the second exceeds \p limit. Both
// ascend.
static std::uint64_t countAbove(const Samples &first, const Samples &second,
                                double limit) {
  std::uint64_t count = 0;
  std::size_t place = 0;
  for (const double divisor : second) {
    while (place != first.size() && !(first[place] / divisor > limit))
      ++place;
    count += first.size() - place;
  }
  return count;
}

static double numberOf(std::uint64_t bits) {
  double number = 0.0;
  std::memcpy(&number, &bits, sizeof number);
  return number;
}

// The least ratio of the first to the second that fewer than \p count pairs
// exceed; count is above 0. Searched by its bits, which have the order of the
// numbers, so that it is one of the ratios to the last bit.
static double greatestRatioBut(const Samples &first, const Samples &second,
                               std::size_t count) {
  std::uint64_t low = 0, high = 0;
  const double most = std::numeric_limits<double>::infinity();
  std::memcpy(&high, &most, sizeof high);
  while (low != high) {
    const std::uint64_t middle = low + (high - low) / 2;
    if (countAbove(first, second, numberOf(middle)) < count)
      high = middle;
    else
      low = middle + 1;
  }
  return numberOf(low);
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
  const std::size_t count =
      unlikelyCount(version.size(), original.size(), tail);
  if (count == 0)
    return std::nullopt;
  const Samples times = sorted(version), originals = sorted(original);
  const double high = greatestRatioBut(times, originals, count);
  const double inverseOfLow = greatestRatioBut(originals, times, count);
  // Times that lie very far apart have a ratio that no double holds.
  constexpr double most = std::numeric_limits<double>::max();
  return RatioInterval{std::min(1.0 / inverseOfLow, most),
                       std::min(high, most)};
}
