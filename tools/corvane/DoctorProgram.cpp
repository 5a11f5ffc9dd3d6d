// Runs a program with the layer and looks at the record and at the libraries
// that it has loaded.

#include "base/RegularFile.h"
#include "base/Settings.h"
#include "results/overview/Reasons.h"
#include "results/overview/Words.h"
#include "tools/corvane/Doctor.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

#include <set>

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

static constexpr std::uint64_t mostRecordText = std::uint64_t(256) << 20;

// The system's loader lists what it loads, here in a file for each process.
static std::set<std::string> openClLibraries(const std::string &folder) {
  std::set<std::string> libraries;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    llvm::Expected<std::string> text =
        readRegularFile(entry->path(), mostRecordText);
    if (!text) {
      llvm::consumeError(text.takeError());
      continue;
    }
    llvm::StringRef rest = *text;
    while (!rest.empty()) {
      const auto [line, others] = rest.split('\n');
      const llvm::StringRef file = line.split("calling init: ").second.trim();
      if (path::filename(file).contains("libOpenCL"))
        libraries.insert(file.str());
      rest = others;
    }
  }
  return libraries;
}

static void examineLibraries(Findings &findings,
                             const std::set<std::string> &libraries,
                             const ProbedOpenCl &probed, ProbeWords words) {
  for (const std::string &library : libraries) {
    if (fs::equivalent(library, probed.loader)) {
      findings.ok("the program loads " + library);
      continue;
    }
    words.loader = library;
    words.output += "-other";
    if (probeOpenCl(words).takesLayers)
      findings.ok("the program loads " + library + ", which takes layers");
    else
      findings.fail("the program loads " + library + ", which takes no layers",
                    "let it use " + probed.loader);
  }
}

static void examineKernels(Findings &findings, const Overview &overview) {
  for (const OverviewProgram &program : overview.programs) {
    std::size_t variants = 0;
    for (const KernelVariants &kernel : program.line.kernels)
      variants += kernel.variants.size();
    findings.ok("program " + program.line.hash.substr(0, 8) + ": " +
                counted(program.line.kernels.size(), "kernel", "kernels") +
                ", " + counted(variants, "variant", "variants"));
    for (const LookAlike &kernel : program.line.lookAlikes)
      findings.warn("kernel " + kernel.name + " looks like a variant",
                    "it is none: " + kernel.reason);
  }
  std::map<std::string, std::size_t> untunable;
  std::size_t tunable = 0;
  for (const OverviewConfiguration &configuration : overview.configurations)
    if (configuration.outcome == Outcome::NotTuned)
      ++untunable[configuration.kernel + ": " + configuration.untunable];
    else
      ++tunable;
  if (tunable != 0)
    findings.ok(counted(tunable, "configuration", "configurations") +
                " with variants can be tuned");
  for (const auto &[reason, count] : untunable)
    findings.warn(counted(count, "configuration", "configurations") +
                      " cannot be tuned",
                  reason);
  if (tunable == 0 && untunable.empty())
    findings.warn("nothing can be tuned", remarkOn(overview));
}

static void examineRecord(Findings &findings, const Overview &overview) {
  if (overview.programs.empty()) {
    findings.fail("no kernel was launched through the layer",
                  "look at the lines above; does the program use OpenCL?");
    return;
  }
  findings.ok(counted(overview.launches(), "launch", "launches") +
              " through the layer");
  examineKernels(findings, overview);
}

static ProgramEnd runObserved(const Program &program,
                              const ScratchFolder &scratch) {
  const std::string libraries = scratch.file("libraries");
  (void)fs::create_directory(libraries);
  setVariable(variable::tune, scratch.file("tuned"));
  // Enough to see whether the launches can be measured.
  setVariable(variable::samples, "1");
  setVariable(variable::tuneSeconds, "10");
  setVariable("LD_DEBUG", "libs");
  setVariable("LD_DEBUG_OUTPUT", libraries + "/of");
  const ProgramEnd end = runAndWait(program);
  for (const char *own : {"LD_DEBUG", "LD_DEBUG_OUTPUT", variable::tune})
    removeVariable(own);
  return end;
}

void corvane::examineProgram(Findings &findings, const Program &program,
                             const ProbedOpenCl &probed,
                             const ProbeWords &words,
                             const ScratchFolder &scratch) {
  const ProgramEnd end = runObserved(program, scratch);
  if (!end.started) {
    findings.fail(program[0] + " cannot be started", end.whyNot);
    return;
  }
  if (end.exitCode == 0)
    findings.ok("the program ran and ended with exit code 0");
  else
    findings.warn("the program ended with exit code " +
                      std::to_string(end.exitCode),
                  "see whether it does so without corvane too");
  examineLibraries(findings, openClLibraries(scratch.file("libraries")), probed,
                   words);
  RunSet runs;
  addRuns(runs, scratch.file("tuned"));
  examineRecord(findings, makeOverview(runs));
}
