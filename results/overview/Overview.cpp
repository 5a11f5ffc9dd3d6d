// The figures of an overview as a whole, and its words.

#include "results/overview/Overview.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>

using namespace corvane;

const OverviewVersion *OverviewConfiguration::original() const {
  if (versions.empty() || !versions[0].figures.version.empty() ||
      versions[0].figures.samples == 0)
    return nullptr;
  return &versions[0];
}

const OverviewVersion *OverviewConfiguration::winning() const {
  if (winner.empty())
    return nullptr;
  const auto found = llvm::find_if(versions, [&](const auto &version) {
    return version.figures.version == winner;
  });
  return found == versions.end() ? nullptr : &*found;
}

double OverviewConfiguration::originalTime() const {
  const OverviewVersion *const version = original();
  return version ? version->figures.median * static_cast<double>(launches)
                 : 0.0;
}

double OverviewConfiguration::winningTime() const {
  const OverviewVersion *const version = winning();
  return version ? version->figures.median * static_cast<double>(launches)
                 : originalTime();
}

double Overview::originalTime() const {
  double sum = 0.0;
  for (const OverviewConfiguration &configuration : configurations)
    sum += configuration.originalTime();
  return sum;
}

double Overview::winningTime() const {
  double sum = 0.0;
  for (const OverviewConfiguration &configuration : configurations)
    sum += configuration.winningTime();
  return sum;
}

std::optional<double> Overview::partSaved() const {
  const double before = originalTime();
  if (!(before > 0.0))
    return std::nullopt;
  return std::clamp(1.0 - winningTime() / before, 0.0, 1.0);
}

std::uint64_t Overview::launches() const {
  std::uint64_t sum = 0;
  for (const OverviewRun &run : runs)
    sum += run.end ? run.end->launches : 0;
  std::uint64_t inConfigurations = 0;
  for (const OverviewConfiguration &configuration : configurations)
    inConfigurations += configuration.launches;
  // Processes that were killed and logs tell of no others than these.
  return std::max(sum, inConfigurations);
}

const char *corvane::verdictText(Verdict verdict) {
  switch (verdict) {
  case Verdict::Original:
    return "original";
  case Verdict::Winner:
    return "winner";
  case Verdict::Faster:
    return "faster";
  case Verdict::NoDifference:
    return "no difference";
  case Verdict::Slower:
    return "slower";
  case Verdict::Dropped:
    return "far slower";
  case Verdict::TooFew:
    return "too few samples";
  case Verdict::Different:
    return "wrong results";
  case Verdict::Repeatless:
    return "cannot be checked";
  case Verdict::Refused:
    return "refused";
  case Verdict::NotRun:
    return "did not run";
  }
  return "";
}

const char *corvane::outcomeText(Outcome outcome) {
  switch (outcome) {
  case Outcome::Faster:
    return "faster";
  case Outcome::NoDifference:
    return "no difference";
  case Outcome::NothingToChoose:
    return "nothing to choose from";
  case Outcome::TooFew:
    return "too few samples";
  case Outcome::NotTuned:
    return "not tuned";
  }
  return "";
}
