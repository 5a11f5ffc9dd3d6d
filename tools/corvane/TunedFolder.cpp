// Reads files that any process may have written, and replaces the profile.

#include "tools/corvane/TunedFolder.h"

#include "base/RegularFile.h"
#include "results/ResultFiles.h"
#include "results/profile/ProfileFile.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

std::string corvane::joined(const std::string &folder, const llvm::Twine &a,
                            const llvm::Twine &b, const llvm::Twine &c) {
  llvm::SmallString<256> text(folder);
  path::append(text, a, b, c);
  return text.str().str();
}

std::string corvane::absoluteFolder(const std::string &folder) {
  llvm::SmallString<256> text(folder);
  fs::make_absolute(text);
  llvm::sys::path::native(text);
  path::remove_dots(text, true);
  return text.str().str();
}

std::set<std::string> corvane::runNames(const std::string &folder) {
  std::set<std::string> names;
  std::error_code error;
  for (fs::directory_iterator
           entry(joined(folder, resultFile::runFolder), error),
       end;
       !error && entry != end; entry.increment(error))
    names.insert(path::filename(entry->path()).str());
  return names;
}

static void tellProblems(const std::string &file, const RunRecord &run) {
  if (run.problems.empty())
    return;
  const RunProblem &first = run.problems.front();
  std::string text =
      file + ", line " + std::to_string(first.line) + ": " + first.text;
  if (run.problemCount > 1)
    text += " (and " + std::to_string(run.problemCount - 1) + " more)";
  say(text);
}

std::optional<RunRecord> corvane::readRecord(const std::string &file) {
  llvm::Expected<std::string> text = readRegularFile(file, recordLimit);
  if (!text) {
    say(file + ": " + llvm::toString(text.takeError()));
    return std::nullopt;
  }
  RunRecord run = readRun(*text);
  tellProblems(file, run);
  return run;
}

std::vector<RunRecord> corvane::readRuns(const std::string &folder,
                                         const std::set<std::string> &names) {
  std::vector<RunRecord> runs;
  for (const std::string &name : names)
    if (std::optional<RunRecord> run = readRecord(
            joined(folder, resultFile::runFolder, name, resultFile::runRecord)))
      runs.push_back(std::move(*run));
  return runs;
}

llvm::Error corvane::writeProfile(const std::string &folder,
                                  const Profile &profile) {
  return replaceFile(joined(folder, resultFile::profile), profileText(profile));
}
