// Makes configurations and pages for the tests of results.

#pragma once

#include "results/Statistics.h"

#include "llvm/Support/raw_ostream.h"

#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

using Versions = std::vector<std::pair<std::string, std::vector<double>>>;

/// The key of a launch in one dimension of 1024 items in groups of 64.
inline LaunchKey keyOf(const std::string &kernel) {
  return {kernel, "1024", "", "", "64", "", ""};
}

/// The key of a launch of "k" with these sizes.
inline LaunchKey sized(const std::vector<std::string> &global,
                       const std::vector<std::string> &local) {
  return {"k", global[0], global[1], global[2], local[0], local[1], local[2]};
}

inline ConfigResults config(const std::string &kernel,
                            const Versions &versions) {
  return {keyOf(kernel), {versions.begin(), versions.end()}};
}

inline RankedConfig rankedConfig(const std::string &kernel,
                                 const Versions &versions) {
  return rankVersions(config(kernel, versions));
}

/// The text that \p write writes to the stream that it is given.
template <typename Write> std::string written(Write write) {
  std::string text;
  llvm::raw_string_ostream out(text);
  write(out);
  out.flush();
  return text;
}

} // namespace corvane::test
