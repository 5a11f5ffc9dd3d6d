// Fills the cells of each row.

#include "tools/corvane/TuneTable.h"

#include "results/overview/Words.h"
#include "results/profile/ProfileFile.h"
#include "tools/corvane/TextTable.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>

using namespace corvane;

static constexpr std::size_t maxRows = 50;

// How many variants are out because what they wrote was different.
static std::size_t
differentVariants(const OverviewConfiguration &configuration) {
  return static_cast<std::size_t>(
      llvm::count_if(configuration.versions, [](const auto &version) {
        return version.verdict == Verdict::Different;
      }));
}

static bool differsFromItself(const OverviewConfiguration &configuration) {
  return llvm::any_of(configuration.versions, [](const auto &version) {
    return version.verdict == Verdict::Original &&
           version.check == Agreement::Different;
  });
}

static std::string checkText(const OverviewConfiguration &configuration) {
  if (const OverviewVersion *const winner = configuration.winning())
    return agreementText(winner->check);
  if (differsFromItself(configuration))
    return "the original differs from itself";
  const std::size_t count = differentVariants(configuration);
  if (count == 0)
    return "";
  const auto variants =
      llvm::count_if(configuration.versions, [](const auto &version) {
        return version.verdict != Verdict::Original;
      });
  return std::to_string(count) + " of " + std::to_string(variants) +
         " variants different";
}

static std::string outcome(const OverviewConfiguration &configuration) {
  const OverviewVersion *const original = configuration.original();
  const OverviewVersion *const winner = configuration.winning();
  if (winner && original) {
    std::string text =
        gainText(original->figures.median / winner->figures.median);
    if (winner->figures.interval)
      text += " (" + gainText(*winner->figures.interval) + ")";
    return text;
  }
  if (configuration.outcome == Outcome::NotTuned)
    return "not tuned: " + configuration.untunable;
  return outcomeText(configuration.outcome);
}

static std::string medianText(const OverviewVersion *version) {
  return version ? durationText(version->figures.median) : std::string();
}

static TextTable::Row rowOf(const OverviewConfiguration &configuration) {
  return {configuration.kernel,
          sizesText(configuration.sizes),
          configuration.winner.empty() ? "original" : configuration.winner,
          medianText(configuration.original()),
          medianText(configuration.winning()),
          outcome(configuration),
          checkText(configuration)};
}

std::string corvane::tuneTable(const Overview &overview) {
  const bool hasPrograms = overview.programs.size() > 1;
  const bool hasDevices = overview.devices.size() > 1;
  // A column without a title has empty cells, and is left out of the text.
  TextTable table({"kernel", "sizes", "winner", "original", "winner's", "gain",
                   "check", hasPrograms ? "program" : "",
                   hasDevices ? "device" : ""},
                  {3, 4});
  const std::size_t count = overview.configurations.size();
  for (std::size_t i = 0; i != std::min(count, maxRows); ++i) {
    const OverviewConfiguration &configuration = overview.configurations[i];
    TextTable::Row row = rowOf(configuration);
    const DeviceLine &device = overview.devices[configuration.device];
    row.push_back(
        hasPrograms
            ? overview.programs[configuration.program].line.hash.substr(0, 8)
            : "");
    row.push_back(hasDevices ? device.name + ", driver " + device.driver : "");
    table.add(std::move(row));
  }
  std::string text = table.text();
  if (count > maxRows)
    text += "and " + std::to_string(count - maxRows) + " more\n";
  return text;
}
