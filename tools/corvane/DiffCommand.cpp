// corvane diff: compares what two folders have found.

#include "results/NumberText.h"
#include "results/overview/Comparison.h"
#include "results/overview/Words.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/TextTable.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>

using namespace corvane;

static constexpr std::size_t maxRows = 50;

static std::string versionAndTime(const OverviewConfiguration &configuration,
                                  double median) {
  return (configuration.winner.empty() ? "original" : configuration.winner) +
         " " + durationText(median);
}

static std::string percent(double part) {
  return (part < 0.0 ? "" : "+") + fixedText(100.0 * part, 1) + " %";
}

static std::string intervalText(const std::optional<RatioInterval> &ratio) {
  if (!ratio)
    return {};
  return percent(ratio->low - 1.0) + " to " + percent(ratio->high - 1.0);
}

// What is slower first, for that is what most users look for.
static int rankOf(Change change) {
  switch (change) {
  case Change::Slower:
    return 0;
  case Change::Faster:
    return 1;
  case Change::NoDifference:
    return 2;
  case Change::TooFew:
    return 3;
  }
  return 4;
}

static std::string tableOf(std::vector<ComparedConfiguration> all) {
  llvm::stable_sort(all, [](const auto &left, const auto &right) {
    return rankOf(left.change) < rankOf(right.change);
  });
  TextTable table(
      {"kernel", "sizes", "before", "after", "time", "95 % interval", "result"},
      {2, 3, 4});
  for (std::size_t i = 0; i != std::min(all.size(), maxRows); ++i) {
    const ComparedConfiguration &each = all[i];
    table.add({each.before->kernel, sizesText(each.before->sizes),
               versionAndTime(*each.before, each.medianBefore),
               versionAndTime(*each.after, each.medianAfter),
               percent(each.slowdown()), intervalText(each.interval),
               changeText(each.change)});
  }
  std::string text = table.text();
  if (all.size() > maxRows)
    text += "and " + std::to_string(all.size() - maxRows) + " more\n";
  return text;
}

static std::size_t countOf(const Comparison &comparison, Change change) {
  return static_cast<std::size_t>(
      llvm::count_if(comparison.configurations, [change](const auto &each) {
        return each.change == change;
      }));
}

static std::string summaryOf(const Comparison &comparison) {
  std::string text;
  for (Change change :
       {Change::Slower, Change::Faster, Change::NoDifference, Change::TooFew}) {
    if (!text.empty())
      text += ", ";
    text +=
        std::to_string(countOf(comparison, change)) + " " + changeText(change);
  }
  if (!comparison.onlyBefore.empty())
    text +=
        "; in the first alone: " + std::to_string(comparison.onlyBefore.size());
  if (!comparison.onlyAfter.empty())
    text +=
        "; in the second alone: " + std::to_string(comparison.onlyAfter.size());
  return text;
}

// How many are slower beyond doubt, and by more than the limit.
static std::size_t tooSlow(const Comparison &comparison, double limit) {
  return static_cast<std::size_t>(
      llvm::count_if(comparison.configurations, [limit](const auto &each) {
        return each.change == Change::Slower && each.slowdown() > limit;
      }));
}

static void tellOfPrograms(const Overview &before, const Overview &after) {
  const auto drivers = [](const Overview &of) {
    std::set<std::string> names;
    for (const DeviceLine &device : of.devices)
      names.insert(device.name + ", driver " + device.driver);
    return names;
  };
  const auto hashes = [](const Overview &of) {
    std::set<std::string> names;
    for (const OverviewProgram &program : of.programs)
      names.insert(program.line.hash);
    return names;
  };
  if (drivers(before) != drivers(after))
    say("the devices or their drivers are not the same");
  if (hashes(before) != hashes(after))
    say("the programs' sources or build options are not the same");
}

int corvane::diff(const DiffOptions &options) {
  const std::optional<RunSet> runsBefore = readResults({options.before});
  const std::optional<RunSet> runsAfter = readResults({options.after});
  if (!runsBefore || !runsAfter)
    return CommandFailed;
  const Overview before = makeOverview(*runsBefore);
  const Overview after = makeOverview(*runsAfter);
  const Comparison comparison = compare(before, after);

  tellOfPrograms(before, after);
  if (comparison.configurations.empty()) {
    say("no kernel was measured with the same sizes on the same device in "
        "both");
    return CommandFailed;
  }
  if (llvm::Error error =
          replaceFile("-", tableOf(comparison.configurations))) {
    say(llvm::toString(std::move(error)));
    return CommandFailed;
  }
  say(summaryOf(comparison));
  if (!options.failOnSlower)
    return 0;
  const std::size_t count = tooSlow(comparison, *options.failOnSlower);
  if (count == 0)
    return 0;
  say(counted(count, "configuration is", "configurations are") +
      " slower by more than " + fixedText(100.0 * *options.failOnSlower, 1) +
      " %");
  return FoundProblem;
}
