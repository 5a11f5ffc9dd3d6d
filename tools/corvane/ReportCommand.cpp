// corvane report: writes a page, or files for other programs, of what runs have
// found.

#include "tools/corvane/Report.h"

#include "results/overview/Exports.h"
#include "results/overview/Page.h"
#include "results/overview/Reasons.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/ResultFolders.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;

using Writer = void (*)(llvm::raw_ostream &, const Overview &);

static bool writeFile(const std::string &file, const Overview &overview,
                      Writer write) {
  llvm::Error error =
      replaceFile(file, [&](llvm::raw_ostream &out) { write(out, overview); });
  if (!error)
    return true;
  say(file + " cannot be written: " + llvm::toString(std::move(error)));
  return false;
}

bool corvane::writeReport(const std::string &file, const Overview &overview) {
  return writeFile(file, overview, writePage);
}

// Beside the results if they are in a folder.
static std::string pageFile(const ReportOptions &options) {
  if (!options.output.empty())
    return options.output;
  const std::string &first = options.folders.front();
  llvm::SmallString<256> file(llvm::sys::fs::is_directory(first)
                                  ? llvm::StringRef(first)
                                  : llvm::sys::path::parent_path(first));
  llvm::sys::path::append(file, reportFile);
  return file.str().str();
}

int corvane::report(const ReportOptions &options) {
  const std::optional<RunSet> runs = readResults(options.folders);
  if (!runs)
    return CommandFailed;
  const Overview overview = makeOverview(*runs);

  const bool hasExports =
      !options.json.empty() || !options.csv.empty() || !options.t4.empty();
  const bool wantsPage = !hasExports || !options.output.empty();
  const std::string page = pageFile(options);
  bool written = true;
  if (!options.json.empty())
    written &= writeFile(options.json, overview, writeOverviewJson);
  if (!options.csv.empty())
    written &= writeFile(options.csv, overview, writeOverviewCsv);
  if (!options.t4.empty())
    written &= writeFile(options.t4, overview, writeOverviewT4);
  if (wantsPage)
    written &= writeReport(page, overview);
  if (!written)
    return CommandFailed;
  say(remarkOn(overview));
  if (wantsPage && page != "-")
    say("the report is in " + page);
  return 0;
}
