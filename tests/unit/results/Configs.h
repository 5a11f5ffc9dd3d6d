// Configurations and pages, made in one line.

#pragma once

#include "results/ConfigResults.h"
#include "results/Statistics.h"

#include "llvm/Support/raw_ostream.h"

#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

using Versions = std::vector<std::pair<std::string, std::vector<double>>>;

/// A launch in one dimension of 1024 items in groups of 64; not ranked yet.
inline ConfigResults config(const std::string &kernel,
                            const Versions &versions) {
  ConfigResults result;
  result.kernel = kernel;
  result.xGlobal = "1024";
  result.xLocal = "64";
  for (const auto &[name, samples] : versions)
    result.versions[name].samples = samples;
  return result;
}

/// A launch of "k" with these sizes; it has no versions.
inline ConfigResults sized(const std::vector<std::string> &global,
                           const std::vector<std::string> &local) {
  ConfigResults result;
  result.kernel = "k";
  result.xGlobal = global[0];
  result.yGlobal = global[1];
  result.zGlobal = global[2];
  result.xLocal = local[0];
  result.yLocal = local[1];
  result.zLocal = local[2];
  return result;
}

inline ConfigResults rankedConfig(const std::string &kernel,
                                  const Versions &versions) {
  ConfigResults result = config(kernel, versions);
  rankVersions(result);
  return result;
}

/// What \p write puts into the stream that it is given.
template <typename Write> std::string written(Write write) {
  std::string text;
  llvm::raw_string_ostream out(text);
  write(out);
  out.flush();
  return text;
}

} // namespace corvane::test
