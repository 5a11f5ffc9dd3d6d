// Splits the log's lines and groups them by launch configuration.

#include "results/ResultsReader.h"

#include "results/LineReader.h"
#include "results/NumberText.h"

#include <array>
#include <unordered_map>

using namespace corvane;

static constexpr std::size_t keyFields = 7; // the kernel and its six sizes
using Fields = std::array<std::string_view, keyFields + 2>;

// The last field goes up to the end of the line, commas and all. Fields that
// the line lacks are empty.
static Fields splitFields(std::string_view line) {
  Fields fields;
  for (std::size_t i = 0; i + 1 != fields.size(); ++i) {
    const std::size_t comma = line.find(',');
    fields[i] = line.substr(0, comma);
    if (comma == std::string_view::npos)
      return fields;
    line.remove_prefix(comma + 1);
  }
  fields.back() = line;
  return fields;
}

static ConfigResults makeConfig(const Fields &fields) {
  ConfigResults config;
  std::string *const key[keyFields] = {
      &config.kernel, &config.xGlobal, &config.yGlobal, &config.zGlobal,
      &config.xLocal, &config.yLocal,  &config.zLocal};
  for (std::size_t i = 0; i != keyFields; ++i)
    *key[i] = fields[i];
  return config;
}

namespace {

/// Finds the configuration of a row without a walk through all of them.
class ConfigFinder {
public:
  explicit ConfigFinder(std::vector<ConfigResults> &list) : configs(list) {}

  ConfigResults &findOrAdd(const Fields &fields) {
    joinKey(fields);
    auto [found, isNew] = positions.try_emplace(key, configs.size());
    if (isNew)
      configs.push_back(makeConfig(fields));
    return configs[found->second];
  }

private:
  // No field of the key has a comma in it, so different keys stay different.
  void joinKey(const Fields &fields) {
    key.clear();
    for (std::size_t i = 0; i != keyFields; ++i) {
      key += fields[i];
      key += ',';
    }
  }

  std::vector<ConfigResults> &configs;
  std::unordered_map<std::string, std::size_t> positions;
  std::string key; ///< kept for its memory
};

} // namespace

static VersionStats &findOrAddVersion(ConfigResults &config,
                                      std::string_view name) {
  auto found = config.versions.find(name);
  if (found == config.versions.end())
    found = config.versions.try_emplace(std::string(name)).first;
  return found->second;
}

int corvane::readCSV(ReportJob &job) {
  LineReader log(job.logPath);
  log.next(); // the header
  ConfigFinder finder(job.configs);
  while (const std::optional<std::string_view> line = log.next()) {
    const Fields fields = splitFields(*line);
    VersionStats &stats =
        findOrAddVersion(finder.findOrAdd(fields), fields[keyFields]);
    stats.samples.push_back(leadingNumber(fields.back()));
  }
  return 0;
}
