// Finds records and logs in a folder, and reads them.

#include "tools/corvane/ResultFolders.h"

#include "base/RegularFile.h"
#include "results/ResultFiles.h"
#include "results/overview/LogRecord.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/ShallowJson.h"
#include "tools/corvane/StepProgress.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;
namespace json = llvm::json;

static constexpr std::uint64_t commandLimit = std::uint64_t(1) << 20;

static std::string nameOf(const std::string &place) {
  return path::filename(absoluteFolder(place)).str();
}

// Empty if it is not known.
static std::vector<std::string> commandOf(const std::string &runFolder) {
  std::vector<std::string> words;
  llvm::Expected<std::string> text =
      readRegularFile(joined(runFolder, commandFile), commandLimit);
  if (!text) {
    llvm::consumeError(text.takeError());
    return words;
  }
  const std::optional<json::Value> value = parseShallowJson(*text);
  if (const json::Array *const list = value ? value->getAsArray() : nullptr)
    for (const json::Value &word : *list)
      if (const auto string = word.getAsString())
        words.push_back(string->str());
  return words;
}

void corvane::rememberCommand(const std::string &folder,
                              const std::vector<std::string> &runs,
                              const std::vector<std::string> &command) {
  json::Array words;
  for (const std::string &word : command)
    words.push_back(json::fixUTF8(word));
  std::string text;
  llvm::raw_string_ostream stream(text);
  stream << json::Value(std::move(words)) << '\n';
  // What cannot be written is only not shown.
  for (const std::string &run : runs)
    llvm::consumeError(replaceFile(
        joined(folder, resultFile::runFolder, run, commandFile), stream.str()));
}

void corvane::addRuns(RunSet &runs, const std::string &folder) {
  const std::set<std::string> names = runNames(folder);
  StepProgress progress("reading run", names.size());
  for (const std::string &name : names) {
    progress.step();
    for (RunRecord &record : readRuns(folder, {name}))
      runs.add(
          {name, commandOf(joined(folder, resultFile::runFolder, name)), false},
          std::move(record));
  }
}

static bool addRecord(RunSet &runs, const std::string &file,
                      const std::string &name) {
  std::optional<RunRecord> record = readRecord(file);
  if (record)
    runs.add({name, commandOf(path::parent_path(file).str()), false},
             std::move(*record));
  return record.has_value();
}

static bool addLog(RunSet &runs, const std::string &file,
                   const std::string &name) {
  std::vector<ConfigResults> configurations;
  if (llvm::Error error = readRawLog(file, configurations)) {
    say(llvm::toString(std::move(error)));
    return false;
  }
  RunRecord record = recordOfLog(configurations);
  if (!record.problems.empty())
    say(file + ": " + std::to_string(record.problemCount) +
        " of its rows cannot be used: " + record.problems.front().text);
  runs.add({name, {}, true}, std::move(record));
  return true;
}

bool corvane::hasResults(const std::string &folder) {
  return !runNames(folder).empty() ||
         fs::exists(joined(folder, resultFile::rawLog)) ||
         fs::exists(joined(folder, resultFile::runRecord));
}

bool corvane::addResults(RunSet &runs, const std::string &place) {
  if (!fs::exists(place)) {
    say(place + " is not there: make it by corvane tune -- PROGRAM, or name "
                "another folder");
    return false;
  }
  if (!fs::is_directory(place))
    return path::extension(place) == ".csv" ||
                   path::filename(place) == resultFile::rawLog
               ? addLog(runs, place, nameOf(place))
               : addRecord(runs, place, nameOf(place));

  const std::size_t before = runs.records.size();
  addRuns(runs, place);
  // The log of a single run has the samples of its record once more.
  const std::string record = joined(place, resultFile::runRecord);
  const std::string log = joined(place, resultFile::rawLog);
  if (fs::exists(record))
    addRecord(runs, record, nameOf(place));
  else if (fs::exists(log))
    addLog(runs, log, nameOf(place));
  if (runs.records.size() != before)
    return true;
  say(place + " has no record of a run and no timing log: make one by corvane "
              "tune -- PROGRAM");
  return false;
}

std::optional<RunSet>
corvane::readResults(const std::vector<std::string> &places) {
  RunSet runs;
  for (const std::string &place : places)
    if (!addResults(runs, place))
      return std::nullopt;
  return runs;
}
