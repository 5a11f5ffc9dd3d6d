// Gathers the samples and checks of all runs, then decides each configuration.

#include "results/profile/ProfileMerge.h"

#include "base/Settings.h"
#include "results/runs/CountedSamples.h"
#include "results/runs/Decision.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <tuple>

using namespace corvane;

namespace {

/// What samples of one configuration have in common.
using Key = std::tuple<ProfileDevice, std::string, std::string, LaunchSizes>;

/// A version of a kernel of a program, on any device and for any sizes.
using VersionKey = std::tuple<std::string, std::string, std::string>;

/// The samples of a version, and the original's that were taken with them.
struct Samples {
  std::vector<double> times;
  std::vector<double> originals;
};

struct Checks {
  Agreement worst = Agreement::Unknown;
  std::size_t count = 0; ///< the most of one run
};

struct Gathered {
  std::map<std::string, Samples> samples; ///< by version
  std::map<std::string, Checks> checks;   ///< by version
  std::set<std::string> accepted;         ///< variants that take the sizes
  bool decided = false;                   ///< by the process itself
  std::string untunable;
  std::uint64_t launches = 0;
};

struct Gathering {
  std::map<Key, Gathered> configurations;
  std::set<VersionKey> different;
};

} // namespace

static Agreement agreementOf(CheckResult result) {
  switch (result) {
  case CheckResult::Equal:
    return Agreement::Equal;
  case CheckResult::WithinBound:
    return Agreement::WithinBound;
  case CheckResult::Different:
    return Agreement::Different;
  }
  return Agreement::Unknown;
}

// The application's launches of each configuration of a run, by its number.
static std::map<std::uint32_t, std::uint64_t> launchesOf(const RunRecord &run) {
  std::map<std::uint32_t, std::uint64_t> launches;
  if (run.end) {
    for (const VersionLaunches &part : run.end->byVersion)
      launches[part.configuration] += part.launches;
    return launches;
  }
  // That is not known: at least the launch that was measured.
  for (const auto &[number, configuration] : run.configurations)
    launches[number] = configuration.samples.empty() ? 0 : 1;
  return launches;
}

static void append(std::vector<double> &all, const std::vector<double> &more) {
  all.insert(all.end(), more.begin(), more.end());
}

// Each version is compared with what the original took in the same runs and by
// as many passes, for the load may have been another one before or after.
static void gatherSamples(Gathered &gathered,
                          const std::map<std::string, SampleRuns> &runs) {
  const auto original = runs.find(std::string());
  for (const auto &[version, taken] : runs) {
    const std::size_t passes = passesOf(taken);
    if (passes == 0)
      continue;
    Samples &samples = gathered.samples[version];
    append(samples.times, samplesAfter(passes, taken));
    if (original != runs.end())
      append(samples.originals, samplesAfter(passes, original->second));
  }
}

// As CORVANE_VERIFY is read: what is no bound asks for equal results.
static double boundIn(const std::string &text) {
  double bound = 0.0;
  const char *const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, bound);
  const bool isBound =
      error == std::errc() && end == last && bound > 0.0 && bound < 1.0;
  return isBound ? bound : 0.0;
}

// By which part results of the run's variants were allowed to differ. Without
// comparisons nothing is allowed: what another run found different stays so.
static double boundOf(const RunRecord &run) {
  if (run.process)
    for (const auto &[name, value] : run.process->settings)
      if (name == variable::verify)
        return boundIn(value);
  return 0.0;
}

// The latest run tells what is allowed now.
static double boundInUse(llvm::ArrayRef<RunRecord> runs) {
  const RunRecord *latest = nullptr;
  for (const RunRecord &run : runs)
    if (run.process &&
        (!latest || run.process->start >= latest->process->start))
      latest = &run;
  return latest ? boundOf(*latest) : 0.0;
}

// What a stricter run found different may be allowed now, but was not seen to
// be: then nothing that it tells of the version counts.
static RunConfiguration withoutDifferent(RunConfiguration configuration) {
  std::set<std::string> different;
  for (const CheckLine &check : configuration.checks)
    if (check.result == CheckResult::Different)
      different.insert(check.version);
  if (different.empty())
    return configuration;
  const auto isOfThem = [&](const auto &line) {
    return different.count(line.version) != 0;
  };
  llvm::erase_if(configuration.samples, isOfThem);
  llvm::erase_if(configuration.checks, isOfThem);
  configuration.decision.reset();
  return configuration;
}

static void gather(Gathering &all, const RunRecord &run,
                   const RunConfiguration &configuration,
                   std::uint64_t launches) {
  const ConfigurationLine &line = configuration.line;
  const DeviceLine &device = run.devices.at(line.device);
  const std::string &program = run.programs.at(line.program).hash;
  Gathered &gathered =
      all.configurations[{{device.name, device.vendor, device.driver},
                          program,
                          line.kernel,
                          line.sizes}];

  gatherSamples(gathered, countedRuns(configuration.samples));
  for (const VariantVerdict &variant : line.variants)
    if (variant.refusal.empty())
      gathered.accepted.insert(variant.spec);
  std::map<std::string, std::size_t> comparisons;
  for (const CheckLine &check : configuration.checks) {
    Checks &checks = gathered.checks[check.version];
    checks.worst = std::max(checks.worst, agreementOf(check.result));
    checks.count = std::max(checks.count, ++comparisons[check.version]);
    if (check.result == CheckResult::Different)
      all.different.insert({program, line.kernel, check.version});
  }
  gathered.decided = gathered.decided || configuration.decision;
  if (gathered.untunable.empty())
    gathered.untunable = line.untunable;
  gathered.launches += launches;
}

// The worst of the configuration's own checks; a difference counts wherever it
// was seen.
static Agreement checkOf(const Gathering &all, const Key &key,
                         const Gathered &gathered, const std::string &version) {
  const auto &[device, program, kernel, sizes] = key;
  if (all.different.count({program, kernel, version}))
    return Agreement::Different;
  const auto found = gathered.checks.find(version);
  return found == gathered.checks.end() ? Agreement::Unknown
                                        : found->second.worst;
}

// All versions that have samples or checks.
static std::vector<VersionSamples>
versionsOf(const Gathering &all, const Key &key, const Gathered &gathered) {
  std::map<std::string, Samples> samples = gathered.samples;
  for (const auto &[version, check] : gathered.checks)
    samples.try_emplace(version);

  const bool reproducible =
      checkOf(all, key, gathered, std::string()) != Agreement::Different;
  std::vector<VersionSamples> versions;
  for (auto &[version, taken] : samples) {
    const bool out = !version.empty() &&
                     (!reproducible || checkOf(all, key, gathered, version) ==
                                           Agreement::Different);
    versions.push_back(
        {version, std::move(taken.times), out, std::move(taken.originals)});
  }
  return versions;
}

static bool comesBefore(const TunedVersion &left, const TunedVersion &right) {
  const auto rank = [](const VersionFigures &figures) {
    return std::tuple(!figures.version.empty(), figures.samples == 0,
                      figures.median);
  };
  return rank(left.figures) < rank(right.figures);
}

// A process compares a version after its first run and once more at its last:
// the second is missing where the process or its time for tuning ended before.
static bool lacksACheck(const Gathered &gathered, const std::string &version) {
  const auto checks = gathered.checks.find(version);
  return !version.empty() && checks != gathered.checks.end() &&
         checks->second.count < 2;
}

// A version that no process came to run, which may be the best.
static bool lacksAVersion(const Gathered &gathered,
                          llvm::ArrayRef<VersionSamples> versions) {
  return llvm::any_of(gathered.accepted, [&](const std::string &spec) {
    return llvm::none_of(versions, [&](const VersionSamples &version) {
      return version.version == spec;
    });
  });
}

// Where no process has decided, each version has to have its samples. Where one
// has, a version that lacks them could not be run, or was begun by another
// process that ended early: that is no reason against the others.
static Decision decideBy(const Gathered &gathered,
                         std::vector<VersionSamples> versions) {
  Decision decision = decide(versions);
  if (!gathered.decided && lacksAVersion(gathered, versions)) {
    decision.decided = false;
    decision.winner.clear();
  }
  if (!gathered.decided || decision.decided)
    return decision;
  for (std::size_t i = 0; i != versions.size(); ++i)
    versions[i].out = versions[i].out || (!decision.versions[i].interval &&
                                          !decision.versions[i].dropped);
  return decide(versions);
}

static TunedConfiguration tune(const Gathering &all, const Key &key,
                               const Gathered &gathered) {
  const auto &[device, program, kernel, sizes] = key;
  Decision decision = decideBy(gathered, versionsOf(all, key, gathered));
  if (lacksACheck(gathered, decision.winner)) {
    decision.decided = false;
    decision.winner.clear();
  }

  TunedConfiguration tuned;
  tuned.device = device;
  tuned.program = program;
  tuned.kernel = kernel;
  tuned.sizes = sizes;
  tuned.decided = decision.decided || gathered.decided;
  tuned.winner = std::move(decision.winner);
  tuned.untunable = gathered.untunable;
  tuned.launches = gathered.launches;
  for (VersionFigures &figures : decision.versions) {
    const Agreement check = checkOf(all, key, gathered, figures.version);
    tuned.versions.push_back({std::move(figures), check});
  }
  std::stable_sort(tuned.versions.begin(), tuned.versions.end(), comesBefore);
  return tuned;
}

std::optional<RatioInterval> TunedConfiguration::bestInterval() const {
  for (const TunedVersion &version : versions)
    if (version.figures.interval &&
        (winner.empty() || version.figures.version == winner))
      return version.figures.interval;
  return std::nullopt;
}

std::vector<TunedConfiguration>
corvane::mergeRuns(llvm::ArrayRef<RunRecord> runs) {
  Gathering all;
  const double inUse = boundInUse(runs);
  for (const RunRecord &run : runs) {
    const bool wasStricter = boundOf(run) < inUse;
    std::map<std::uint32_t, std::uint64_t> launches = launchesOf(run);
    for (const auto &[number, configuration] : run.configurations)
      gather(all, run,
             wasStricter ? withoutDifferent(configuration) : configuration,
             launches[number]);
  }

  std::vector<TunedConfiguration> tuned;
  for (const auto &[key, gathered] : all.configurations)
    tuned.push_back(tune(all, key, gathered));
  return tuned;
}

namespace {

/// Gives values their places in a list, each new one the next.
template <typename Value> class Places {
public:
  explicit Places(std::vector<Value> &values) : list(values) {}

  std::size_t of(const Value &value) {
    const auto [place, isNew] = places.try_emplace(value, list.size());
    if (isNew)
      list.push_back(value);
    return place->second;
  }

private:
  std::vector<Value> &list;
  std::map<Value, std::size_t> places;
};

} // namespace

static ProfileEntry entryOf(const TunedConfiguration &tuned) {
  ProfileEntry entry;
  entry.kernel = tuned.kernel;
  entry.sizes = tuned.sizes;
  if (!tuned.winner.empty())
    entry.use = tuned.winner;
  for (const TunedVersion &version : tuned.versions)
    entry.versions[version.figures.version] = {
        version.figures.median, version.figures.samples, version.check};
  entry.interval = tuned.bestInterval();
  return entry;
}

Profile
corvane::makeProfile(llvm::ArrayRef<TunedConfiguration> configurations) {
  Profile profile;
  Places devices(profile.devices);
  Places programs(profile.programs);
  for (const TunedConfiguration &tuned : configurations)
    if (tuned.decided) {
      ProfileEntry entry = entryOf(tuned);
      entry.device = devices.of(tuned.device);
      entry.program = programs.of(tuned.program);
      profile.entries.push_back(std::move(entry));
    }
  return profile;
}
