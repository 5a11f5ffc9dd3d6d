// Finds the reason in the figures and writes it as a sentence.

#include "results/overview/Reasons.h"

#include "results/overview/Words.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>

using namespace corvane;

static std::string differenceText(const std::optional<CheckLine> &difference) {
  if (!difference)
    return "its results were not the original's";
  return "argument " + std::to_string(difference->argument) + ", element " +
         std::to_string(difference->element) + " is " +
         (difference->actual.empty() ? "different" : difference->actual) +
         (difference->expected.empty() ? ""
                                       : " instead of " + difference->expected);
}

static std::string comparison(const OverviewConfiguration &configuration,
                              const OverviewVersion &version) {
  const OverviewVersion *const original = configuration.original();
  std::string text;
  if (original && version.figures.median > 0.0)
    text = gainText(original->figures.median / version.figures.median);
  if (version.figures.interval)
    text += " (" + gainText(*version.figures.interval) + ")";
  return text;
}

std::string corvane::whyText(const OverviewConfiguration &configuration,
                             const OverviewVersion &version) {
  switch (version.verdict) {
  case Verdict::Original:
    return {};
  case Verdict::Winner:
    return comparison(configuration, version) + ": the fastest";
  case Verdict::Faster:
    return comparison(configuration, version) + ": " +
           (configuration.winner.empty() ? "faster" : "not the fastest");
  case Verdict::NoDifference:
    return comparison(configuration, version) + ": no difference";
  case Verdict::Slower:
    return comparison(configuration, version) + ": slower";
  case Verdict::Dropped:
    return comparison(configuration, version) +
           ": given up, its first two runs took more than twice as long";
  case Verdict::TooFew:
    return counted(version.figures.samples, "sample is", "samples are") +
           " too few for a comparison";
  case Verdict::Different:
    return "wrong results: " + differenceText(version.difference);
  case Verdict::Repeatless:
    return "cannot be checked: the original's own results differ from run to "
           "run";
  case Verdict::Refused:
    return "does not take these sizes: " + version.refusal;
  case Verdict::NotRun:
    return configuration.untunable.empty()
               ? "was not measured"
               : "was not measured: " + configuration.untunable;
  }
  return {};
}

// The reason that most of the variants share.
static std::string mostlyWhy(const OverviewConfiguration &configuration) {
  std::map<Verdict, std::size_t> counts;
  for (const OverviewVersion &version : configuration.versions)
    if (version.verdict != Verdict::Original)
      ++counts[version.verdict];
  if (counts.empty())
    return "it has no variants";
  const auto most = std::max_element(
      counts.begin(), counts.end(),
      [](const auto &a, const auto &b) { return a.second < b.second; });
  const auto first =
      llvm::find_if(configuration.versions, [&](const auto &version) {
        return version.verdict == most->first;
      });
  const std::string why =
      first->figures.version + ": " + whyText(configuration, *first);
  const std::size_t others =
      configuration.versions.size() - 1 - (configuration.original() ? 1 : 0);
  return others == 0
             ? why
             : why + " (and " +
                   counted(others, "other variant", "other variants") + ")";
}

std::string corvane::whyText(const OverviewConfiguration &configuration) {
  switch (configuration.outcome) {
  case Outcome::Faster:
    if (const OverviewVersion *const winning = configuration.winning())
      return winning->figures.version + ": " + whyText(configuration, *winning);
    return {};
  case Outcome::NoDifference:
    return "no variant is faster; " + mostlyWhy(configuration);
  case Outcome::NothingToChoose:
    return "no variant can be used; " + mostlyWhy(configuration);
  case Outcome::TooFew:
    return "too few samples for a decision";
  case Outcome::NotTuned:
    return "not tuned: " + configuration.untunable;
  }
  return {};
}

static const LookAlike *findLookAlike(const Overview &overview) {
  for (const OverviewProgram &program : overview.programs)
    if (!program.line.lookAlikes.empty())
      return &program.line.lookAlikes.front();
  return nullptr;
}

// Of the first program that has a reason; null if none has.
static const std::string *whyNoneGenerated(const Overview &overview) {
  for (const OverviewProgram &program : overview.programs)
    if (!program.line.whyNotGenerated.empty())
      return &program.line.whyNotGenerated;
  return nullptr;
}

static bool hasVariants(const OverviewProgram &program) {
  return llvm::any_of(program.line.kernels, [](const KernelVariants &kernel) {
    return !kernel.variants.empty();
  });
}

static std::string savedText(const Overview &overview, double saved) {
  return "With the fastest versions the kernels take " +
         durationText(overview.winningTime()) + " instead of " +
         durationText(overview.originalTime()) + ": " + percentText(saved) +
         " less.";
}

std::string corvane::remarkOn(const Overview &overview) {
  if (overview.runs.empty())
    return "There are no records of runs and no timing log.";
  if (overview.programs.empty())
    return "The records tell of no OpenCL program.";
  if (overview.configurations.empty() &&
      llvm::none_of(overview.programs, hasVariants)) {
    std::string text = "No program had variants: there was nothing to choose "
                       "from";
    if (const LookAlike *const kernel = findLookAlike(overview))
      text +=
          "; " + kernel->name + " looks like one and is not: " + kernel->reason;
    else if (const std::string *const reason = whyNoneGenerated(overview))
      text += "; none were generated: " + *reason;
    return text + ".";
  }
  if (overview.configurations.empty())
    return "No kernel with variants was launched.";
  if (llvm::all_of(overview.configurations, [](const auto &configuration) {
        return configuration.outcome == Outcome::NotTuned;
      }))
    return "No launch could be tuned: " +
           overview.configurations.front().untunable + ".";
  const double saved = overview.partSaved().value_or(0.0);
  if (saved > 0.0)
    return savedText(overview, saved);
  if (llvm::any_of(overview.configurations, [](const auto &configuration) {
        return configuration.outcome == Outcome::TooFew;
      }))
    return "Nothing is decided for a variant yet: there are too few samples.";
  return "No variant is faster than the kernel that it replaces.";
}

std::vector<std::string> corvane::obstaclesIn(const Overview &overview,
                                              std::size_t most) {
  std::vector<const OverviewConfiguration *> longest;
  for (const OverviewConfiguration &configuration : overview.configurations)
    if (configuration.winner.empty())
      longest.push_back(&configuration);
  // Without a time the number of launches is the best guess.
  llvm::stable_sort(longest, [](const auto *left, const auto *right) {
    return std::tuple(left->originalTime(), left->launches) >
           std::tuple(right->originalTime(), right->launches);
  });
  longest.resize(std::min(longest.size(), most));

  std::vector<std::string> lines;
  for (const OverviewConfiguration *configuration : longest) {
    std::string line = configuration->kernel + " [" +
                       sizesText(configuration->sizes) + "], " +
                       counted(configuration->launches, "launch", "launches");
    if (configuration->original())
      line += ", " + durationText(configuration->originalTime());
    lines.push_back(line + ": " + whyText(*configuration));
  }
  return lines;
}
