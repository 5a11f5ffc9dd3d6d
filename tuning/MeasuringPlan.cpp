// Hands out warm-ups, then samples in rounds of rotating order, then repeats.

#include "tuning/MeasuringPlan.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace corvane;

// Runs without a usable time are repeated, but not for ever.
static constexpr unsigned mostRoundsPerSample = 2;

// Each try takes its share of the allowed error, so there are few of them.
static constexpr std::array<unsigned, mostTries> triesAfter = {1, 3, 9, 27};

static constexpr std::chrono::seconds mostTime{30};

// How many versions are repeated beside the original.
static constexpr std::size_t mostRivals = 3;

MeasuringPlan::MeasuringPlan(std::vector<std::string> names, unsigned samples,
                             bool verified)
    : versions(names.size()), wanted(std::max(samples, 1U)),
      verifies(verified) {
  for (unsigned i = 0; i != versions.size(); ++i) {
    versions[i].name = std::move(names[i]);
    repeated.push_back(i);
  }
}

bool MeasuringPlan::isInPlay(unsigned version) const {
  return versions[version].fate == VersionFate::Measured;
}

bool MeasuringPlan::hasRival() const {
  return isInPlay(0) &&
         std::any_of(repeated.begin() + 1, repeated.end(),
                     [this](unsigned version) { return isInPlay(version); });
}

std::optional<PlannedRun> MeasuringPlan::next() {
  if (!isInPlay(0) || versions.size() == 1)
    return std::nullopt;
  if (std::optional<PlannedRun> run = nextWarmUp())
    return run;
  for (; !isThrough && hasRival(); endPass())
    if (std::optional<PlannedRun> run =
            passes == 0 ? nextSample() : nextRepeat())
      return run;
  return std::nullopt;
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
      if (taken == 2 && version != 0)
        dropIfSlow(versions[version]);
      if (!isInPlay(version) || taken >= wanted)
        continue;
      return PlannedRun{version, PlannedRun::Purpose::Sample,
                        verifies && taken + 1 == wanted};
    }
  }
  return std::nullopt;
}

std::optional<PlannedRun> MeasuringPlan::nextRepeat() {
  const std::size_t count = repeated.size();
  for (; round < wanted; ++round, turn = 0) {
    while (turn < count) {
      const unsigned version = repeated[(round + passes + turn++) % count];
      const std::size_t taken = versions[version].samples.size();
      if (!isInPlay(version) || round >= taken)
        continue;
      return PlannedRun{version, PlannedRun::Purpose::Sample,
                        verifies && round + 1 == taken, round};
    }
  }
  return std::nullopt;
}

void MeasuringPlan::completed(const PlannedRun &run,
                              std::optional<double> microseconds) {
  if (!microseconds || run.purpose != PlannedRun::Purpose::Sample)
    return;
  Version &version = versions[run.version];
  if (run.repeats) {
    std::vector<double> &runs = version.runs[*run.repeats];
    runs.push_back(*microseconds);
    version.samples[*run.repeats] = sampleOf(runs);
    return;
  }
  version.runs.push_back({*microseconds});
  version.samples.push_back(*microseconds);
}

// A version that is hopeless after two samples will not win; its time is better
// spent on the others. Asked when its third is due: then the original has two
// as well, for one alone may have been a lucky one.
void MeasuringPlan::dropIfSlow(Version &version) {
  const std::vector<double> &original = versions[0].samples;
  if (original.size() > 1 && isHopeless(version.samples, medianOf(original)))
    version.fate = VersionFate::Slow;
}

void MeasuringPlan::compared(const PlannedRun &run, Equality equality) {
  Version &version = versions[run.version];
  ++version.comparisons;
  if (equality != Equality::Equal)
    version.alwaysEqual = false;
  if (equality == Equality::Different)
    version.fate = VersionFate::Different;
}

void MeasuringPlan::failed(const PlannedRun &run) {
  versions[run.version].fate = VersionFate::Failed;
}

void MeasuringPlan::endPass() {
  ++passes;
  round = turn = 0;
  const bool isLast = passes == triesAfter.back() || spent > mostTime;
  const bool isTried = std::find(triesAfter.begin(), triesAfter.end(),
                                 passes) != triesAfter.end();
  if (isTried && !isLast)
    repeated = whoMayStillWin();
  isThrough = isLast || repeated.size() == 1;
}

// The original first, then versions whose intervals do not tell, the fastest of
// them only; no other than the original when a decision is possible.
std::vector<unsigned> MeasuringPlan::whoMayStillWin() const {
  const Decision decision = decide();
  std::vector<unsigned> rivals;
  if (!decision.decided || !decision.winner.empty())
    return {0};
  for (const unsigned version : repeated) {
    const auto &interval = decision.versions[version].interval;
    if (interval && interval->low < winningRatio)
      rivals.push_back(version);
  }
  std::stable_sort(rivals.begin(), rivals.end(), [&](unsigned a, unsigned b) {
    return decision.versions[a].median < decision.versions[b].median;
  });
  rivals.resize(std::min(rivals.size(), mostRivals));
  rivals.insert(rivals.begin(), 0);
  return rivals;
}

Decision MeasuringPlan::decide() const {
  std::vector<VersionSamples> measured;
  bool isAnyLeft = false;
  for (const Version &version : versions) {
    const bool isOriginal = measured.empty();
    // After a whole pass it has samples, or the runtime tells no times of it.
    const bool isUntimed = passes != 0 && version.samples.empty();
    const bool isOut = !isOriginal && (!isReproducible() || isUntimed ||
                                       version.fate != VersionFate::Measured);
    isAnyLeft = isAnyLeft || (!isOriginal && !isOut);
    measured.push_back({version.name, version.samples, isOut});
    // A version that is not repeated any more.
    const std::size_t passesOfIt = passesOf(version.runs);
    if (passesOfIt != 0 && passesOfIt < passesOf(versions[0].runs))
      measured.back().originals = samplesAfter(passesOfIt, versions[0].runs);
  }
  Decision decision = corvane::decide(measured);
  if (!isAnyLeft)
    decision.decided = true;
  for (unsigned i = 0; i != versions.size(); ++i) {
    // By the samples that there were then, whatever came after them.
    decision.versions[i].dropped = fate(i) == VersionFate::Slow;
    const bool isProved = !verifies || versions[i].comparisons > 1;
    if (versions[i].name == decision.winner && i != 0 && !isProved) {
      decision.decided = false;
      decision.winner.clear();
    }
  }
  return decision;
}
