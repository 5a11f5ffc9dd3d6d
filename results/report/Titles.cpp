// How the report names a configuration to people, and counts its samples.

#include "results/report/Pages.h"

#include <algorithm>

using namespace corvane;

static std::string dimension(const char *name, const std::string &global,
                             const std::string &local) {
  return global.empty() ? "" : name + global + "/" + local;
}

// The comma stands before "y" and "z" even if nothing stands before the comma.
std::string corvane::configTitle(const ConfigResults &config) {
  return config.kernel + " [ " +
         dimension("x:", config.xGlobal, config.xLocal) +
         dimension(", y:", config.yGlobal, config.yLocal) +
         dimension(", z:", config.zGlobal, config.zLocal) + " ] ";
}

std::size_t corvane::sampleCount(const ConfigResults &config) {
  if (config.ranking.empty())
    return 0;
  const auto fewest = std::min_element(
      config.ranking.begin(), config.ranking.end(),
      [](const auto &left, const auto &right) {
        return left.second.arrival.size() < right.second.arrival.size();
      });
  return fewest->second.arrival.size();
}
