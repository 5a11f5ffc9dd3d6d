// corvane merge: puts the results of several folders into a new one.

#include "base/RegularFile.h"
#include "results/Files.h"
#include "results/RawTimingLog.h"
#include "results/ResultFiles.h"
#include "results/overview/Reasons.h"
#include "results/overview/Words.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/Report.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/StepProgress.h"
#include "tools/corvane/TunedFolder.h"
#include "tools/corvane/WinningVariants.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

namespace {

/// Copies results into one folder, each run once.
class Merging {
public:
  explicit Merging(std::string into) : output(std::move(into)) {}

  /// False, and it has said why, if nothing can be written.
  bool addPlace(const std::string &place);
  bool writeLog();

private:
  bool addRun(const std::string &runFolder, const std::string &name);
  bool write(const std::string &file, llvm::StringRef text);

  const std::string output;
  std::map<std::string, std::string> written; ///< records by the run's name
  std::vector<std::string> logs;
};

} // namespace

bool Merging::write(const std::string &file, llvm::StringRef text) {
  llvm::Error error = replaceFile(file, text);
  if (!error)
    return true;
  say(file + " cannot be written: " + llvm::toString(std::move(error)));
  return false;
}

bool Merging::addRun(const std::string &runFolder, const std::string &name) {
  const std::string file = joined(runFolder, resultFile::runRecord);
  llvm::Expected<std::string> text = readRegularFile(file, recordLimit);
  if (!text) {
    say(file + ": " + llvm::toString(text.takeError()));
    return true;
  }
  std::string free = name;
  for (unsigned i = 2; written.count(free); ++i) {
    if (written[free] == *text) {
      say(file + " is there twice, and counts once");
      return true;
    }
    free = name + "-" + std::to_string(i);
  }
  const std::string into = joined(output, resultFile::runFolder, free);
  if (const std::error_code error = fs::create_directories(into)) {
    say(into + " cannot be made: " + error.message());
    return false;
  }
  // The command is only shown, and need not be there.
  if (llvm::Expected<std::string> command =
          readRegularFile(joined(runFolder, commandFile), recordLimit))
    (void)write(joined(into, commandFile), *command);
  else
    llvm::consumeError(command.takeError());
  if (!write(joined(into, resultFile::runRecord), *text))
    return false;
  written[free] = std::move(*text);
  return true;
}

bool Merging::addPlace(const std::string &place) {
  if (!hasResults(place)) {
    say(place + " has no record of a run and no timing log");
    return false;
  }
  const std::set<std::string> names = runNames(place);
  StepProgress progress("merging run", names.size());
  for (const std::string &name : names) {
    progress.step();
    if (!addRun(joined(place, resultFile::runFolder, name), name))
      return false;
  }
  // The log of a single run has the samples of its record once more.
  if (fs::exists(joined(place, resultFile::runRecord)))
    return addRun(place, path::filename(absoluteFolder(place)).str());
  const std::string log = joined(place, resultFile::rawLog);
  if (fs::exists(log))
    logs.push_back(log);
  return true;
}

static void copyRows(llvm::raw_ostream &out, const std::string &log) {
  LineReader lines(log);
  std::string_view line;
  lines.next(line); // the header
  while (lines.next(line))
    out << line << '\n';
  if (llvm::Error error = lines.takeError())
    say(llvm::toString(std::move(error)));
}

bool Merging::writeLog() {
  if (logs.empty())
    return true;
  const std::string file = joined(output, resultFile::rawLog);
  llvm::Error error = replaceFile(file, [&](llvm::raw_ostream &out) {
    out << rawLogHeader;
    for (const std::string &log : logs)
      copyRows(out, log);
  });
  if (!error)
    return true;
  say(file + " cannot be written: " + llvm::toString(std::move(error)));
  return false;
}

static void tellApart(const Overview &overview) {
  if (overview.devices.size() > 1) {
    std::vector<std::string> names;
    for (const DeviceLine &device : overview.devices)
      names.push_back(device.name.empty()
                          ? "one that a timing log does not name"
                          : device.name + " with driver " + device.driver);
    say(std::to_string(names.size()) +
        " devices stay apart: " + llvm::join(names, "; "));
  }
  if (overview.programs.size() > 1) {
    std::vector<std::string> hashes;
    for (const OverviewProgram &program : overview.programs)
      hashes.push_back(program.line.hash.empty()
                           ? "one that a timing log does not name"
                           : program.line.hash.substr(0, 8));
    say(std::to_string(hashes.size()) +
        " programs stay apart: " + llvm::join(hashes, ", "));
  }
}

// A log names no device and no program, so no profile can be made from it.
static std::vector<RunRecord> recordsOnly(RunSet runs) {
  std::vector<RunRecord> records;
  for (std::size_t i = 0; i != runs.records.size(); ++i)
    if (!runs.origins[i].isLog)
      records.push_back(std::move(runs.records[i]));
  return records;
}

int corvane::merge(const MergeOptions &options) {
  const std::string output = absoluteFolder(options.output);
  if (hasResults(output)) {
    say(output + " has results already: name a new folder");
    return CommandFailed;
  }
  if (const std::error_code error = fs::create_directories(output)) {
    say(output + " cannot be made: " + error.message());
    return CommandFailed;
  }
  Merging merging(output);
  for (const std::string &place : options.folders)
    if (!merging.addPlace(place))
      return CommandFailed;
  GeneratedPrograms generated;
  for (const std::string &place : options.folders)
    generated.addFolder(place);
  if (!merging.writeLog() || !generated.write(output))
    return CommandFailed;

  RunSet runs;
  if (!addResults(runs, output))
    return CommandFailed;
  const Overview overview = makeOverview(runs);
  const std::vector<RunRecord> records = recordsOnly(std::move(runs));
  if (!records.empty()) {
    const Profile profile = makeProfile(mergeRuns(records));
    if (llvm::Error error = writeProfile(output, profile)) {
      say(output +
          ": no profile could be written: " + llvm::toString(std::move(error)));
      return CommandFailed;
    }
    writeWinningVariants(output, profile);
  }
  const std::string page = joined(output, reportFile);
  if (!writeReport(page, overview))
    return CommandFailed;
  tellApart(overview);
  say(counted(overview.runs.size(), "run is", "runs are") + " in " + output +
      ": " + remarkOn(overview));
  say("the report is in " + page);
  return 0;
}
