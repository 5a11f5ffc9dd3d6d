// Run records: any bytes, through reader, writer, merging and look-up.

#include "tests/fuzz/Input.h"

#include "results/profile/ProfileFile.h"
#include "results/profile/ProfileLookup.h"
#include "results/profile/ProfileMerge.h"
#include "results/runs/RunWriter.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::fuzz;

// The record as it is written again.
static std::string textOf(const RunRecord &run) {
  std::string text;
  if (run.process)
    text += lineText(*run.process);
  for (const auto &[number, line] : run.devices)
    text += lineText(line);
  for (const auto &[number, line] : run.programs)
    text += lineText(line);
  for (const auto &[number, configuration] : run.configurations) {
    text += lineText(configuration.line);
    for (const SampleLine &line : configuration.samples)
      text += lineText(line);
    for (const CheckLine &line : configuration.checks)
      text += lineText(line);
    if (configuration.decision)
      text += lineText(*configuration.decision);
  }
  return run.end ? text + lineText(*run.end) : text;
}

static void checkRun(const RunRecord &run, std::size_t lines) {
  check(run.problems.size() <= RunReader::maxProblems, "problems are few");
  check(run.problemCount <= lines, "a line has one problem at most");
  check(run.process || run.configurations.empty(),
        "nothing is read without a process line");
  for (const auto &[number, configuration] : run.configurations) {
    check(run.programs.count(configuration.line.program) == 1 &&
              run.devices.count(configuration.line.device) == 1,
          "a configuration refers to what is there");
    const std::uint32_t dimensions = configuration.line.sizes.dimensions;
    check(dimensions >= 1 && dimensions <= 3, "there are 1 to 3 dimensions");
  }
}

static void checkWinner(const TunedConfiguration &tuned) {
  if (tuned.winner.empty())
    return;
  const auto winner = std::find_if(
      tuned.versions.begin(), tuned.versions.end(),
      [&](const TunedVersion &v) { return v.figures.version == tuned.winner; });
  check(winner != tuned.versions.end() && winner->figures.interval &&
            winner->figures.interval->high < 1.0,
        "a winner is faster");
  check(winner->check != Agreement::Different, "a winner is right");
  check(tuned.decided, "a winner was decided");
}

// A launch of each configuration finds what was decided.
static void checkLookup(const std::vector<TunedConfiguration> &configurations,
                        const Profile &profile) {
  const ProfileLookup lookup(profile);
  for (const TunedConfiguration &tuned : configurations) {
    const KernelChoices *const choices =
        lookup.choicesFor(tuned.program, tuned.kernel, tuned.device);
    const ProfileAnswer answer =
        choices ? choices->answer(tuned.sizes) : ProfileAnswer();
    check(answer.measured == tuned.decided,
          "what is decided is in the profile");
    if (tuned.decided)
      check(answer.spec == tuned.winner, "the winner is what is used");
  }
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = std::string(Input(data, size).remaining());
  const RunRecord run = readRun(text);
  checkRun(run, 1 + static_cast<std::size_t>(
                        std::count(text.begin(), text.end(), '\n')));

  const std::string written = textOf(run);
  const RunRecord again = readRun(written);
  check(again.problemCount == 0, "what is written can be read");
  check(textOf(again) == written, "what is written is read as it was");

  const std::vector<TunedConfiguration> configurations = mergeRuns({run});
  for (const TunedConfiguration &tuned : configurations)
    checkWinner(tuned);
  const Profile profile = makeProfile(configurations);
  check(static_cast<bool>(readProfile(profileText(profile))),
        "a profile that is made can be read");
  checkLookup(configurations, profile);
  return 0;
}
