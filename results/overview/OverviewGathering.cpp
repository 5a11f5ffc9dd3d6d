// Gathers from the records what a decision does not need and people ask for:
// samples, differences, refusals; and joins it with the decisions.

#include "results/overview/Overview.h"

#include "results/runs/CountedSamples.h"
#include "results/runs/Decision.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>
#include <tuple>

using namespace corvane;

namespace {

/// What tells one configuration from others, as in a profile.
using ConfigurationKey =
    std::tuple<ProfileDevice, std::string, std::string, LaunchSizes>;

struct GatheredVersion {
  std::vector<double> samples;
  std::optional<CheckLine> difference;
  std::string refusal;
  std::uint64_t launches = 0;
};

using GatheredVersions = std::map<std::string, GatheredVersion>;

class Gathering {
public:
  explicit Gathering(Overview &fill) : overview(fill) {}

  void add(const RunRecord &record);
  void describe(const TunedConfiguration &tuned);

private:
  void addProgram(const ProgramLine &line);
  void addVersions(const RunConfiguration &configuration,
                   GatheredVersions &versions);

  Overview &overview;
  std::map<ProfileDevice, std::size_t> devices;
  std::map<std::string, std::size_t> programs;
  std::map<ConfigurationKey, GatheredVersions> configurations;
};

} // namespace

static ProfileDevice identityOf(const DeviceLine &line) {
  return {line.name, line.vendor, line.driver};
}

template <typename Element, typename Same>
static void addMissing(std::vector<Element> &into,
                       const std::vector<Element> &from, Same same) {
  for (const Element &element : from)
    if (llvm::none_of(
            into, [&](const Element &known) { return same(known, element); }))
      into.push_back(element);
}

// Two processes may have built one program for devices that differ in what the
// compiler makes of it.
void Gathering::addProgram(const ProgramLine &line) {
  const auto [place, isNew] =
      programs.try_emplace(line.hash, overview.programs.size());
  if (isNew) {
    overview.programs.push_back({line});
    return;
  }
  ProgramLine &known = overview.programs[place->second].line;
  addMissing(known.kernels, line.kernels,
             [](const auto &a, const auto &b) { return a.kernel == b.kernel; });
  addMissing(known.lookAlikes, line.lookAlikes,
             [](const auto &a, const auto &b) { return a.name == b.name; });
  known.spills = known.spills || line.spills;
  if (known.whyNotGenerated.empty())
    known.whyNotGenerated = line.whyNotGenerated;
}

void Gathering::addVersions(const RunConfiguration &configuration,
                            GatheredVersions &versions) {
  for (const VariantVerdict &verdict : configuration.line.variants) {
    GatheredVersion &version = versions[verdict.spec];
    if (version.refusal.empty())
      version.refusal = verdict.refusal;
  }
  for (const auto &[name, samples] : countedRuns(configuration.samples))
    for (const std::vector<double> &runs : samples)
      versions[name].samples.push_back(sampleOf(runs));
  for (const CheckLine &check : configuration.checks) {
    std::optional<CheckLine> &worst = versions[check.version].difference;
    if (check.result != CheckResult::Equal &&
        (!worst || check.result > worst->result))
      worst = check;
  }
}

void Gathering::add(const RunRecord &record) {
  for (const auto &[number, line] : record.devices)
    if (devices.try_emplace(identityOf(line), overview.devices.size()).second)
      overview.devices.push_back(line);
  for (const auto &[number, line] : record.programs)
    addProgram(line);

  std::map<std::uint32_t, GatheredVersions *> byNumber;
  for (const auto &[number, configuration] : record.configurations) {
    const ConfigurationLine &line = configuration.line;
    GatheredVersions &versions = configurations[{
        identityOf(record.devices.at(line.device)),
        record.programs.at(line.program).hash, line.kernel, line.sizes}];
    byNumber[number] = &versions;
    addVersions(configuration, versions);
  }
  if (!record.end)
    return;
  for (const VersionLaunches &part : record.end->byVersion)
    if (const auto found = byNumber.find(part.configuration);
        found != byNumber.end())
      (*found->second)[part.version].launches += part.launches;
}

static Verdict verdictOf(const OverviewVersion &version,
                         const TunedConfiguration &tuned, bool isRepeatable) {
  const VersionFigures &figures = version.figures;
  if (figures.version.empty())
    return Verdict::Original;
  if (version.check == Agreement::Different)
    return Verdict::Different;
  if (figures.samples == 0)
    return version.refusal.empty() ? Verdict::NotRun : Verdict::Refused;
  if (!isRepeatable)
    return Verdict::Repeatless;
  if (figures.version == tuned.winner)
    return Verdict::Winner;
  if (figures.dropped)
    return Verdict::Dropped;
  if (!figures.interval)
    return Verdict::TooFew;
  if (figures.interval->high < winningRatio)
    return Verdict::Faster;
  return figures.interval->low > 1.0 ? Verdict::Slower : Verdict::NoDifference;
}

static Outcome outcomeOf(const OverviewConfiguration &configuration,
                         const TunedConfiguration &tuned) {
  if (!tuned.winner.empty())
    return Outcome::Faster;
  if (!tuned.decided && !tuned.untunable.empty())
    return Outcome::NotTuned;
  if (tuned.bestInterval())
    return tuned.decided ? Outcome::NoDifference : Outcome::TooFew;
  const bool mayDecide =
      llvm::any_of(configuration.versions, [](const OverviewVersion &version) {
        return version.verdict == Verdict::TooFew ||
               version.verdict == Verdict::NotRun;
      });
  return mayDecide && !tuned.decided ? Outcome::TooFew
                                     : Outcome::NothingToChoose;
}

static OverviewVersion versionOf(TunedVersion tuned, GatheredVersion gathered) {
  OverviewVersion version;
  version.figures = std::move(tuned.figures);
  version.check = tuned.check;
  version.samples = std::move(gathered.samples);
  version.difference = std::move(gathered.difference);
  version.launches = gathered.launches;
  if (version.figures.samples == 0)
    version.refusal = std::move(gathered.refusal);
  return version;
}

void Gathering::describe(const TunedConfiguration &tuned) {
  OverviewConfiguration configuration;
  configuration.device = devices.at(tuned.device);
  configuration.program = programs.at(tuned.program);
  configuration.kernel = tuned.kernel;
  configuration.sizes = tuned.sizes;
  configuration.winner = tuned.winner;
  configuration.launches = tuned.launches;
  if (!tuned.decided)
    configuration.untunable = tuned.untunable;

  GatheredVersions &gathered =
      configurations[{tuned.device, tuned.program, tuned.kernel, tuned.sizes}];
  for (const TunedVersion &version : tuned.versions) {
    auto node = gathered.extract(version.figures.version);
    configuration.versions.push_back(versionOf(
        version, node ? std::move(node.mapped()) : GatheredVersion()));
  }
  // What is left has neither samples nor checks.
  for (auto &[name, left] : gathered) {
    TunedVersion version;
    version.figures.version = name;
    configuration.versions.push_back(versionOf(version, std::move(left)));
  }

  const bool isRepeatable =
      llvm::none_of(configuration.versions, [](const OverviewVersion &version) {
        return version.figures.version.empty() &&
               version.check == Agreement::Different;
      });
  for (OverviewVersion &version : configuration.versions)
    version.verdict = verdictOf(version, tuned, isRepeatable);
  configuration.outcome = outcomeOf(configuration, tuned);
  overview.configurations.push_back(std::move(configuration));
}

Overview corvane::makeOverview(const RunSet &runs) {
  Overview overview;
  Gathering gathering(overview);
  for (std::size_t i = 0; i != runs.records.size(); ++i) {
    const RunRecord &record = runs.records[i];
    overview.runs.push_back(
        {runs.origins[i], record.process, record.end, record.problemCount});
    gathering.add(record);
  }
  for (const TunedConfiguration &tuned : mergeRuns(runs.records))
    gathering.describe(tuned);
  llvm::stable_sort(overview.configurations,
                    [](const auto &left, const auto &right) {
                      return left.originalTime() > right.originalTime();
                    });
  return overview;
}
