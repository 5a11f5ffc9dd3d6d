// corvane check: runs every variant in a simulator that watches memory, and
// compares its results with the kernel's.

#include "base/RegularFile.h"
#include "base/Settings.h"
#include "results/RawTimingLog.h"
#include "results/ResultFiles.h"
#include "results/overview/Reasons.h"
#include "results/overview/Words.h"
#include "tools/corvane/Doctor.h"
#include "tools/corvane/Layer.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/SimulatorLog.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"
#include "llvm/Support/Process.h"
#include "llvm/Support/Program.h"

#include <set>

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

static constexpr std::uint64_t mostLogText = std::uint64_t(256) << 20;
static constexpr const char *driversVariable = "OCL_ICD_VENDORS";

// The simulator as a driver for a loader: beside the program oclgrind, as its
// packages put it. Empty if it is not there.
static std::string findSimulator() {
  const auto program = llvm::sys::findProgramByName("oclgrind");
  if (!program)
    return {};
  const std::string prefix =
      path::parent_path(path::parent_path(*program)).str();
  const std::string file =
      joined(prefix, "lib", "oclgrind/liboclgrind-rt-icd.so");
  return fs::exists(file) ? file : std::string();
}

namespace {

/// A version of a kernel by the names that results have for them.
using KernelVersion = std::pair<std::string, std::string>;

/// Defines variables and puts them back.
class Variables {
public:
  ~Variables() {
    for (const auto &[name, value] : before)
      if (value)
        setVariable(name, *value);
      else
        removeVariable(name);
  }
  Variables() = default;
  Variables(const Variables &) = delete;
  Variables &operator=(const Variables &) = delete;

  void set(const char *name, const std::string &value) {
    remember(name);
    setVariable(name, value);
  }
  void remove(const char *name) {
    remember(name);
    removeVariable(name);
  }

private:
  void remember(const char *name) {
    const auto value = llvm::sys::Process::GetEnv(name);
    before.try_emplace(name, value ? std::optional<std::string>(*value)
                                   : std::nullopt);
  }

  std::map<std::string, std::optional<std::string>> before;
};

} // namespace

// Has each launch run all variants and the kernel, in the simulator.
static ProgramEnd runSimulated(const Program &program,
                               const std::string &simulator,
                               const ScratchFolder &scratch) {
  Variables variables;
  (void)fs::create_directory(scratch.file("drivers"));
  llvm::consumeError(replaceFile(
      joined(scratch.file("drivers"), "simulator.icd", ""), simulator + "\n"));
  variables.set(driversVariable, scratch.file("drivers"));
  variables.set("OCLGRIND_LOG", scratch.file("log"));
  variables.set("OCLGRIND_DATA_RACES", "1");
  variables.set("OCLGRIND_UNINITIALIZED", "1");
  variables.set("OCLGRIND_MAX_ERRORS", "20000");
  variables.set(variable::autotune, scratch.file("times"));
  variables.set(variable::installLocation, scratch.file("times"));
  variables.remove(variable::tune);
  variables.remove(variable::profile);
  return runAndWait(program);
}

// Has each variant's results compared with its kernel's, on the real device.
static ProgramEnd runCompared(const Program &program,
                              const ScratchFolder &scratch) {
  Variables variables;
  variables.set(variable::tune, scratch.file("tuned"));
  variables.set(variable::samples, "1");
  variables.remove(variable::autotune);
  variables.remove(variable::profile);
  return runAndWait(program);
}

// The kernel and the spec in the name of a variant; the spec is empty for a
// kernel.
static KernelVersion splitName(llvm::StringRef name) {
  constexpr llvm::StringRef marker = "_coarsed_";
  const std::size_t at = name.rfind(marker);
  if (at == llvm::StringRef::npos)
    return {name.str(), std::string()};
  return {name.substr(0, at).str(), name.substr(at + marker.size()).str()};
}

static std::string textOf(const SimulatorFinding &finding) {
  std::string text = finding.what + " by work-item (" + finding.workItem + ")";
  if (!finding.place.empty())
    text += ", " + finding.place;
  if (!finding.source.empty())
    text += ", \"" + finding.source + "\"";
  if (finding.count > 1)
    text += ", and " + std::to_string(finding.count - 1) + " more";
  return text;
}

// The variants that ran.
static std::set<KernelVersion> variantsIn(const std::string &log) {
  std::vector<ConfigResults> configurations;
  llvm::consumeError(readRawLog(log, configurations));
  std::set<KernelVersion> variants;
  for (const ConfigResults &configuration : configurations)
    for (const auto &[version, samples] : configuration.versions)
      if (version != baselineName)
        variants.emplace(configuration.launchKey.kernel, version);
  return variants;
}

// Returns the variants with which something is wrong that is not wrong with
// their kernels.
static std::set<KernelVersion>
examineMemory(Findings &findings,
              const std::vector<SimulatorFinding> &messages) {
  std::set<std::pair<std::string, std::string>> ofOriginals;
  for (const SimulatorFinding &message : messages)
    if (const auto [kernel, spec] = splitName(message.kernel); spec.empty())
      if (ofOriginals.emplace(kernel, message.what).second)
        findings.warn("kernel " + kernel + " itself", textOf(message));
  std::set<KernelVersion> wrong;
  for (const SimulatorFinding &message : messages) {
    const KernelVersion version = splitName(message.kernel);
    if (version.second.empty() ||
        ofOriginals.count({version.first, message.what}))
      continue;
    wrong.insert(version);
    findings.fail("variant " + version.second + " of " + version.first,
                  textOf(message));
  }
  return wrong;
}

static void examineResults(Findings &findings, const Overview &overview,
                           std::set<KernelVersion> &wrong) {
  for (const OverviewConfiguration &configuration : overview.configurations)
    for (const OverviewVersion &version : configuration.versions)
      if (version.verdict == Verdict::Different &&
          wrong.emplace(configuration.kernel, version.figures.version).second)
        findings.fail("variant " + version.figures.version + " of " +
                          configuration.kernel + " [" +
                          sizesText(configuration.sizes) + "]",
                      whyText(configuration, version));
}

static bool hasStarted(const ProgramEnd &end, const Program &program) {
  if (!end.started)
    say(program[0] + ": " + end.whyNot);
  return end.started;
}

int corvane::check(const Program &program) {
  const std::string simulator = findSimulator();
  if (simulator.empty()) {
    say("the simulator Oclgrind is not there: on Debian, apt-get install "
        "oclgrind");
    return CommandFailed;
  }
  const ScratchFolder scratch;
  if (!scratch.isThere() || !requireLayer())
    return CommandFailed;
  const ProgramEnd simulated = runSimulated(program, simulator, scratch);
  if (!hasStarted(simulated, program))
    return simulated.exitCode;
  const ProgramEnd compared = runCompared(program, scratch);
  if (!hasStarted(compared, program))
    return compared.exitCode;

  Findings findings;
  if (simulated.exitCode != 0)
    findings.warn("the program ended with exit code " +
                      std::to_string(simulated.exitCode) + " in the simulator",
                  "what it did before is examined");
  std::string log;
  if (llvm::Expected<std::string> text =
          readRegularFile(scratch.file("log"), mostLogText))
    log = std::move(*text);
  else
    llvm::consumeError(text.takeError());
  std::set<KernelVersion> wrong =
      examineMemory(findings, readSimulatorLog(log));
  RunSet runs;
  addRuns(runs, scratch.file("tuned"));
  examineResults(findings, makeOverview(runs), wrong);

  const std::set<KernelVersion> ran =
      variantsIn(joined(scratch.file("times"), resultFile::rawLog, ""));
  for (const KernelVersion &version : ran)
    if (!wrong.count(version))
      findings.ok("variant " + version.second + " of " + version.first);
  if (ran.empty() && wrong.empty())
    findings.warn("no variant was run",
                  "corvane doctor -- PROGRAM says what stands in the way");
  if (llvm::Error error = replaceFile("-", findings.text())) {
    say(llvm::toString(std::move(error)));
    return CommandFailed;
  }
  return findings.hasFailed() ? FoundProblem : 0;
}
