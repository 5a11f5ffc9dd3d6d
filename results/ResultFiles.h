// Names every file that results are written to.

#pragma once

#include <string>

namespace corvane {

/// All names are part of the interface. Each format is described where the
/// file's text is made: RawTimingLog.h, Report.h, report/Pages.h,
/// runs/RunLines.h and profile/Profile.h.
namespace resultFile {
inline constexpr const char *rawLog = ".auto.csv";
inline constexpr const char *table = "autotune.csv";
inline constexpr const char *mainPage = "main.html";
inline constexpr const char *pageFolder = "html"; ///< holds all other pages
inline constexpr const char *indexPage = "index.html";
// The name of a configuration (report/PageLinks.h) and one of these endings
// make the name of a page.
inline constexpr const char *framePage = ".html";
inline constexpr const char *tablePage = "_table.html";
inline constexpr const char *graphPage = "_graph.html";

inline constexpr const char *runFolder = "runs"; ///< has a folder for each run
inline constexpr const char *runRecord = "run.jsonl";
inline constexpr const char *profile = "profile.json";
} // namespace resultFile

/// The path of a file in \p directory, whose text is used as it stands: an
/// empty one is the root.
inline std::string resultPath(const std::string &directory,
                              const std::string &name) {
  return directory + "/" + name;
}

/// The path of a page in the folder of the pages.
inline std::string pagePath(const std::string &directory,
                            const std::string &name) {
  return resultPath(directory, resultFile::pageFolder) + "/" + name;
}

} // namespace corvane
