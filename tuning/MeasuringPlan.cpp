// Hands out warm-ups, then samples in rounds of rotating order.

#include "tuning/MeasuringPlan.h"

#include <algorithm>

using namespace corvane;

// Runs without a usable time are repeated, but not for ever.
static constexpr unsigned mostRoundsPerSample = 2;

MeasuringPlan::MeasuringPlan(unsigned candidates, unsigned samples,
                             bool verified)
    : versions(std::size_t{candidates} + 1), wanted(std::max(samples, 1U)),
      verifies(verified) {}

bool MeasuringPlan::isInPlay(unsigned version) const {
  return versions[version].fate == VersionFate::Measured;
}

bool MeasuringPlan::hasRival() const {
  return isInPlay(0) &&
         std::any_of(versions.begin() + 1, versions.end(), [](const auto &v) {
           return v.fate == VersionFate::Measured;
         });
}

std::optional<PlannedRun> MeasuringPlan::next() {
  if (!isInPlay(0) || versions.size() == 1)
    return std::nullopt;
  if (std::optional<PlannedRun> run = nextWarmUp())
    return run;
  if (!hasRival())
    return std::nullopt;
  return nextSample();
}

// The reference, each candidate, and the application's kernel again.
std::optional<PlannedRun> MeasuringPlan::nextWarmUp() {
  const unsigned count = static_cast<unsigned>(versions.size());
  if (warmUps > count)
    return std::nullopt;
  const unsigned turnOf = warmUps++;
  if (turnOf == 0)
    return PlannedRun{0, PlannedRun::Purpose::Reference, false};
  return PlannedRun{turnOf % count, PlannedRun::Purpose::WarmUp, verifies};
}

std::optional<PlannedRun> MeasuringPlan::nextSample() {
  const unsigned count = static_cast<unsigned>(versions.size());
  for (; round < mostRoundsPerSample * wanted; ++round, turn = 0) {
    while (turn < count) {
      const unsigned version = (round + turn++) % count;
      const std::size_t taken = versions[version].samples.size();
      if (!isInPlay(version) || taken >= wanted)
        continue;
      return PlannedRun{version, PlannedRun::Purpose::Sample,
                        verifies && taken + 1 == wanted};
    }
  }
  return std::nullopt;
}

void MeasuringPlan::completed(const PlannedRun &run,
                              std::optional<double> microseconds) {
  if (run.purpose != PlannedRun::Purpose::Sample || !microseconds)
    return;
  versions[run.version].samples.push_back(*microseconds);
  dropIfSlow(run.version);
}

static double middleOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<long>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// A version whose first two samples both take more than twice the original's
// median will not win; its time is better spent on the others.
void MeasuringPlan::dropIfSlow(unsigned version) {
  const std::vector<double> &samples = versions[version].samples;
  const std::vector<double> &original = versions[0].samples;
  if (version == 0 || samples.size() != 2 || original.empty())
    return;
  if (*std::min_element(samples.begin(), samples.end()) >
      2.0 * middleOf(original))
    versions[version].fate = VersionFate::Slow;
}

void MeasuringPlan::compared(const PlannedRun &run, Equality equality) {
  Version &version = versions[run.version];
  if (equality != Equality::Equal)
    version.alwaysEqual = false;
  if (equality == Equality::Different)
    version.fate = VersionFate::Different;
}

void MeasuringPlan::failed(const PlannedRun &run) {
  versions[run.version].fate = VersionFate::Failed;
}
