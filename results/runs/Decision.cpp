// Compares medians and intervals of all versions, and picks the winner.

#include "results/runs/Decision.h"

#include "results/runs/RatioInterval.h"

#include <algorithm>

using namespace corvane;
using llvm::ArrayRef;

double corvane::medianOf(std::vector<double> samples) {
  if (samples.empty())
    return 0.0;
  const auto middle =
      samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  if (samples.size() % 2 == 1)
    return *middle;
  const double below = *std::max_element(samples.begin(), middle);
  return below + (*middle - below) / 2.0;
}

bool corvane::isHopeless(ArrayRef<double> samples, double originalMedian) {
  const double limit = 2.0 * originalMedian;
  return samples.size() >= 2 && samples[0] > limit && samples[1] > limit;
}

static const VersionSamples *findOriginal(ArrayRef<VersionSamples> versions) {
  const auto found = llvm::find_if(
      versions, [](const VersionSamples &v) { return v.version.empty(); });
  return found == versions.end() || found->samples.empty() ? nullptr : found;
}

// Whether the samples of a version count against those of the original.
static bool competes(const VersionSamples &version) {
  return !version.version.empty() && !version.out && !version.samples.empty();
}

// Whether a version was given up after its first two samples. Another run that
// ended early may have added one.
static bool isDropped(const VersionSamples &version, double originalMedian) {
  const double limit = 2.0 * originalMedian;
  const auto isSlow = [limit](double sample) { return sample > limit; };
  return version.samples.size() >= 2 && version.samples.size() <= 3 &&
         llvm::all_of(version.samples, isSlow);
}

// The winner is the best of all that compete, and of all tries. With the
// allowed error shared evenly among them (Bonferroni), one that is no faster
// wins no more often than if it were alone. Each interval misses the ratio with
// that error at most.
static double tailOfEach(ArrayRef<VersionSamples> versions,
                         double originalMedian) {
  const auto competing =
      llvm::count_if(versions, [&](const VersionSamples &version) {
        return competes(version) && !isDropped(version, originalMedian);
      });
  return errorProbability / mostTries /
         static_cast<double>(std::max<std::ptrdiff_t>(competing, 2));
}

static ArrayRef<double> originalsOf(const VersionSamples &version,
                                    const VersionSamples &original) {
  return version.originals.empty() ? original.samples : version.originals;
}

static VersionFigures figuresOf(const VersionSamples &version,
                                const VersionSamples &original, double tail) {
  VersionFigures figures;
  figures.version = version.version;
  figures.median = medianOf(version.samples);
  figures.samples = version.samples.size();
  if (competes(version)) {
    figures.dropped = isDropped(version, medianOf(original.samples));
    if (!figures.dropped)
      figures.interval =
          ratioInterval(version.samples, originalsOf(version, original), tail);
  }
  return figures;
}

// The one with the least median of those that have an interval, in proportion
// to the original's; null if none.
static const VersionFigures *findBest(ArrayRef<VersionSamples> versions,
                                      const VersionSamples &original,
                                      ArrayRef<VersionFigures> figures) {
  const VersionFigures *best = nullptr;
  double least = 0.0;
  for (std::size_t i = 0; i != versions.size(); ++i) {
    if (!figures[i].interval)
      continue;
    const double ratio =
        figures[i].median / medianOf(originalsOf(versions[i], original).vec());
    if (best && !(ratio < least))
      continue;
    best = &figures[i];
    least = ratio;
  }
  return best;
}

// Whether each version has enough samples, or needs no more.
static bool hasEnough(ArrayRef<VersionSamples> versions,
                      ArrayRef<VersionFigures> figures) {
  for (std::size_t i = 0; i != versions.size(); ++i) {
    const bool needsMore = !versions[i].version.empty() && !versions[i].out;
    if (needsMore && !figures[i].interval && !figures[i].dropped)
      return false;
  }
  return true;
}

Decision corvane::decide(ArrayRef<VersionSamples> versions) {
  Decision decision;
  const VersionSamples none;
  const VersionSamples *const found = findOriginal(versions);
  const VersionSamples &original = found ? *found : none;
  const double tail = tailOfEach(versions, medianOf(original.samples));
  for (const VersionSamples &version : versions)
    decision.versions.push_back(figuresOf(version, original, tail));

  decision.decided = found && hasEnough(versions, decision.versions);
  const VersionFigures *const best =
      findBest(versions, original, decision.versions);
  if (decision.decided && best && best->interval->high < winningRatio)
    decision.winner = best->version;
  return decision;
}
