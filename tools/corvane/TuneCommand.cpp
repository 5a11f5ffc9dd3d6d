// corvane tune: runs the program, then makes the profile from its records.

#include "results/NumberText.h"
#include "results/overview/Words.h"
#include "tools/corvane/Layer.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/Report.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/TuneProgress.h"
#include "tools/corvane/TuneTable.h"
#include "tools/corvane/TunedFolder.h"
#include "tools/corvane/WinningVariants.h"

#include "base/Settings.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"
#include "llvm/Support/Process.h"
#include "llvm/Support/raw_ostream.h"

#include <algorithm>
#include <iterator>

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

// Makes the folder if need be, and makes a file in it: nothing else shows
// whether it can be written to.
static bool prepareFolder(const std::string &folder) {
  std::error_code error = fs::create_directories(folder);
  int descriptor = -1;
  llvm::SmallString<256> file;
  if (!error)
    error =
        fs::createUniqueFile(folder + "/try-%%%%%%%%.tmp", descriptor, file);
  if (error) {
    say(folder + " cannot be written to (" + error.message() +
        "): name another folder with --output");
    return false;
  }
  llvm::sys::Process::SafelyCloseFileDescriptor(descriptor);
  fs::remove(file);
  return true;
}

static void setVariables(const std::string &folder,
                         const TuneOptions &options) {
  setVariable(variable::tune, folder);
  if (!options.samples.empty())
    setVariable(variable::samples, options.samples);
  if (!options.verify.empty())
    setVariable(variable::verify, options.verify);
  if (!options.seconds.empty())
    setVariable(variable::tuneSeconds, options.seconds);
}

// Variants that other settings of the user's would bring in are none that this
// command knows of.
static void setGenerator(const std::string &folder,
                         const TuneOptions &options) {
  removeVariable(variable::generate);
  removeVariable(variable::variants);
  if (!options.generates)
    return;
  const std::optional<std::string> generator = findGenerator();
  const std::string generated = generatedFolder(folder);
  if (!generator)
    say("no variants are generated, because corvane-coarsen is not beside this "
        "program; those that programs carry are measured");
  else if (const std::error_code error = fs::create_directories(generated))
    say(generated + ": " + error.message());
  else {
    setVariable(variable::generate, *generator);
    setVariable(variable::variants, generated);
  }
}

// Why no launch of the program reached the layer. Asks the loader in a process
// of its own, because a driver may end the process.
static void tellWhyNothingRan(const std::string &layer) {
  removeVariable(variable::tune);
  switch (static_cast<LoaderAnswer>(
      runAndWait({ownProgram(), probeArgument, layer}).exitCode)) {
  case LoaderAnswer::IsMissing:
    say("there is no OpenCL loader (libOpenCL.so.1 or OpenCL.dll): install "
        "one that takes layers");
    return;
  case LoaderAnswer::TakesNone:
    say("the OpenCL loader takes no layers: install a newer one (ocl-icd 2.3.1 "
        "or the Khronos loader), or put it first in the search path");
    return;
  case LoaderAnswer::HasNoPlatform:
    say("no OpenCL platform was found: install a driver");
    return;
  case LoaderAnswer::TakesLayers:
    break;
  }
  say("no kernel was launched through the layer: does the program use OpenCL, "
      "by a loader of its own perhaps?");
}

static bool hasVariants(const RunRecord &run) {
  return llvm::any_of(run.programs, [](const auto &program) {
    return llvm::any_of(program.second.kernels, [](const auto &kernel) {
      return !kernel.variants.empty();
    });
  });
}

// Why there was nothing to measure, by the first program that has a reason.
static void tellWhyNoVariants(llvm::ArrayRef<RunRecord> runs) {
  for (const RunRecord &run : runs)
    for (const auto &[number, program] : run.programs)
      if (!program.lookAlikes.empty()) {
        const LookAlike &first = program.lookAlikes.front();
        say("no program had variants; " + first.name +
            " looks like one and is not: " + first.reason);
        return;
      }
  for (const RunRecord &run : runs)
    for (const auto &[number, program] : run.programs)
      if (!program.whyNotGenerated.empty()) {
        say("no program had variants: " + program.whyNotGenerated);
        return;
      }
  say("no program had variants: there was nothing to choose from");
}

// Programs from binaries are what most users of PyOpenCL wonder about.
static void tellOfBinaries(const Overview &overview) {
  if (llvm::any_of(overview.configurations, [](const auto &configuration) {
        return llvm::StringRef(configuration.untunable).contains("no source");
      }))
    say("programs from binaries cannot be tuned; PyOpenCL makes them unless "
        "PYOPENCL_NO_CACHE=1 is set");
}

static void tellHowToUse(const Overview &overview, const TuneOptions &options) {
  const std::string command =
      options.folder == defaultFolder
          ? "corvane run -- PROGRAM"
          : "corvane run --profile " + options.folder + " -- PROGRAM";
  const double saved = overview.partSaved().value_or(0.0);
  if (!(saved > 0.0)) {
    tellOfBinaries(overview);
    say("no kernel time saved; the profile is in " + options.folder);
    return;
  }
  say(percentText(saved) + " of kernel time saved; to use it: " + command);
}

// Makes the profile of the runs, and tells the user what came of them.
static void conclude(const std::string &folder, const TuneOptions &options,
                     const RunSet &runs) {
  const Profile profile = makeProfile(mergeRuns(runs.records));
  // A program that runs meanwhile must find what the profile names.
  writeWinningVariants(folder, profile);
  if (llvm::Error error = writeProfile(folder, profile)) {
    say(folder +
        ": no profile could be written: " + llvm::toString(std::move(error)));
    return;
  }
  const Overview overview = makeOverview(runs);
  if (llvm::any_of(runs.records, hasVariants)) {
    llvm::errs() << tuneTable(overview);
    tellHowToUse(overview, options);
  } else {
    tellWhyNoVariants(runs.records);
  }
  llvm::SmallString<256> page(folder);
  path::append(page, reportFile);
  if (writeReport(page.str().str(), overview))
    say("the report is in " + options.folder + "/" + reportFile);
}

// The seconds that tuning may add; none: any number.
static std::optional<double> budgetOf(const TuneOptions &options) {
  const auto variable = llvm::sys::Process::GetEnv(variable::tuneSeconds);
  const double seconds = leadingNumber(
      options.seconds.empty() ? (variable ? *variable : "") : options.seconds);
  return seconds > 0.0 ? std::optional<double>(seconds) : std::nullopt;
}

static ProgramEnd runWithProgress(const Program &program,
                                  const TuneOptions &options,
                                  const std::string &folder,
                                  const std::set<std::string> &before) {
  std::optional<TuneProgress> progress;
  if (!options.quiet)
    progress.emplace(folder, before, budgetOf(options));
  return runAndWait(program);
}

int corvane::tune(const TuneOptions &options, const Program &program) {
  if (llvm::sys::Process::GetEnv(variable::autotune)) {
    say("CORVANE_AUTOTUNE is set and would keep the program from being tuned: "
        "unset it");
    return CommandFailed;
  }
  const std::optional<std::string> layer = requireLayer();
  const std::string folder = absoluteFolder(options.folder);
  if (!layer || !prepareFolder(folder))
    return CommandFailed;
  setVariables(folder, options);
  setGenerator(folder, options);

  const std::set<std::string> before = runNames(folder);
  const ProgramEnd end = runWithProgress(program, options, folder, before);
  if (!end.started) {
    say(program[0] + ": " + end.whyNot);
    return end.exitCode;
  }
  const std::set<std::string> after = runNames(folder);
  std::vector<std::string> added;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                      std::back_inserter(added));
  if (added.empty())
    tellWhyNothingRan(*layer);
  rememberCommand(folder, added, program);
  RunSet runs;
  addRuns(runs, folder);
  if (!runs.records.empty())
    conclude(folder, options, runs);
  return end.exitCode;
}
