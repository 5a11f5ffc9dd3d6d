// What the result files are called, in the output directory and in links.

#pragma once

#include <string>

namespace corvane {

/// All names are part of the interface.
namespace resultFile {
inline constexpr const char *rawLog = ".auto.csv";
inline constexpr const char *table = "autotune.csv";
inline constexpr const char *mainPage = "main.html";
inline constexpr const char *pageFolder = "html"; ///< holds all other pages
inline constexpr const char *indexPage = "index.html";
// A configuration's pages have these endings behind its name.
inline constexpr const char *framePage = ".html";
inline constexpr const char *tablePage = "_table.html";
inline constexpr const char *graphPage = "_graph.html";
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
