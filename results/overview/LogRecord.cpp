// Reads the sizes of a log's configurations, and takes each row for a sample.

#include "results/overview/LogRecord.h"

#include <charconv>
#include <optional>

using namespace corvane;

static std::optional<std::size_t> wholeNumberOf(const std::string &text) {
  std::size_t number = 0;
  const char *const end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end)
    return std::nullopt;
  return number;
}

// None if the texts are not the sizes of a launch.
static std::optional<LaunchSizes> sizesOf(const LaunchKey &key) {
  LaunchSizes sizes;
  const std::string *const globals[] = {&key.xGlobal, &key.yGlobal,
                                        &key.zGlobal};
  const std::string *const locals[] = {&key.xLocal, &key.yLocal, &key.zLocal};
  sizes.dimensions = 0;
  for (std::size_t i = 0; i != 3 && !globals[i]->empty(); ++i) {
    const auto global = wholeNumberOf(*globals[i]);
    const auto local = wholeNumberOf(*locals[i]);
    if (!global || !local)
      return std::nullopt;
    sizes.global[i] = *global;
    sizes.local[i] = *local;
    ++sizes.dimensions;
  }
  if (sizes.dimensions == 0)
    return std::nullopt;
  return sizes;
}

namespace {

class LogTaker {
public:
  void add(const ConfigResults &config);
  RunRecord record;

private:
  void complain(const std::string &what);
  void addLaunches(std::uint32_t configuration, std::uint64_t launches);
};

} // namespace

void LogTaker::complain(const std::string &what) {
  if (record.problems.size() < RunReader::maxProblems)
    record.problems.push_back({0, what});
  ++record.problemCount;
}

void LogTaker::addLaunches(std::uint32_t configuration,
                           std::uint64_t launches) {
  record.end->launches += launches;
  record.end->tunedLaunches += launches;
  record.end->byVersion.push_back({configuration, std::string(), launches});
}

void LogTaker::add(const ConfigResults &config) {
  const std::optional<LaunchSizes> sizes = sizesOf(config.launchKey);
  if (!sizes) {
    complain("sizes that are no numbers");
    return;
  }
  const auto number = static_cast<std::uint32_t>(record.configurations.size());
  RunConfiguration configuration;
  configuration.line.configuration = number;
  configuration.line.kernel = config.launchKey.kernel;
  configuration.line.sizes = *sizes;
  // Each launch ran every version once.
  const auto original = config.versions.find(baselineName);
  if (original != config.versions.end())
    addLaunches(number, original->second.size());
  for (const auto &[name, samples] : config.versions) {
    const std::string version = versionFromFile(name);
    if (!version.empty())
      configuration.line.variants.push_back({version, std::string()});
    for (double microseconds : samples)
      if (microseconds > 0.0)
        configuration.samples.push_back({number, version, microseconds, false});
      else
        complain("a time that is not above zero");
  }
  record.configurations.emplace(number, std::move(configuration));
}

RunRecord corvane::recordOfLog(llvm::ArrayRef<ConfigResults> configurations) {
  LogTaker log;
  log.record.process.emplace();
  log.record.end.emplace();
  log.record.devices[0];
  ProgramLine &program = log.record.programs[0];
  for (const ConfigResults &config : configurations)
    log.add(config);
  std::map<std::string, std::vector<std::string>> kernels;
  for (const auto &[number, configuration] : log.record.configurations)
    for (const VariantVerdict &variant : configuration.line.variants) {
      std::vector<std::string> &variants = kernels[configuration.line.kernel];
      if (!llvm::is_contained(variants, variant.spec))
        variants.push_back(variant.spec);
    }
  for (auto &[kernel, variants] : kernels)
    program.kernels.push_back({kernel, std::move(variants)});
  return std::move(log.record);
}
