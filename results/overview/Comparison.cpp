// Finds the configurations that two overviews share, and compares the samples
// of the versions that they use.

#include "results/overview/Comparison.h"

#include "results/runs/Decision.h"
#include "results/runs/RatioInterval.h"

#include <map>
#include <set>
#include <tuple>

using namespace corvane;

namespace {
using ComparedKey =
    std::tuple<std::string, LaunchSizes, std::string, std::size_t>;
} // namespace

// The version to use, with samples; null without any.
static const OverviewVersion *usedVersion(const OverviewConfiguration &of) {
  const OverviewVersion *const winning = of.winning();
  return winning ? winning : of.original();
}

static bool namesDevices(const Overview &overview) {
  for (const DeviceLine &device : overview.devices)
    if (!device.name.empty())
      return true;
  return false;
}

// A program whose source has changed is still the same kernel to its user. Of
// several configurations with the same names the first are compared, and so on.
static std::map<ComparedKey, const OverviewConfiguration *>
byKey(const Overview &overview, bool withDevice) {
  std::map<ComparedKey, const OverviewConfiguration *> map;
  for (const OverviewConfiguration &configuration : overview.configurations) {
    ComparedKey key(configuration.kernel, configuration.sizes,
                    withDevice ? overview.devices[configuration.device].name
                               : std::string(),
                    0);
    while (!map.try_emplace(key, &configuration).second)
      ++std::get<3>(key);
  }
  return map;
}

static Change changeOf(const std::optional<RatioInterval> &interval) {
  if (!interval)
    return Change::TooFew;
  if (interval->high < 1.0)
    return Change::Faster;
  return interval->low > 1.0 ? Change::Slower : Change::NoDifference;
}

static ComparedConfiguration compared(const OverviewConfiguration &before,
                                      const OverviewVersion &versionBefore,
                                      const OverviewConfiguration &after,
                                      const OverviewVersion &versionAfter) {
  ComparedConfiguration result;
  result.before = &before;
  result.after = &after;
  result.medianBefore = versionBefore.figures.median;
  result.medianAfter = versionAfter.figures.median;
  result.interval = ratioInterval(versionAfter.samples, versionBefore.samples,
                                  errorProbability / 2.0);
  result.change = changeOf(result.interval);
  return result;
}

Comparison corvane::compare(const Overview &before, const Overview &after) {
  const bool withDevice = namesDevices(before) && namesDevices(after);
  const auto ofBefore = byKey(before, withDevice);
  const auto ofAfter = byKey(after, withDevice);
  std::map<const OverviewConfiguration *, const OverviewConfiguration *> pairs;
  std::set<const OverviewConfiguration *> paired;
  for (const auto &[key, configuration] : ofBefore)
    if (const auto found = ofAfter.find(key); found != ofAfter.end())
      pairs[configuration] = found->second;

  Comparison comparison;
  for (const OverviewConfiguration &configuration : before.configurations) {
    const auto pair = pairs.find(&configuration);
    const OverviewVersion *const left = usedVersion(configuration);
    const OverviewVersion *const right =
        pair == pairs.end() ? nullptr : usedVersion(*pair->second);
    if (!left || !right || !(left->figures.median > 0.0)) {
      comparison.onlyBefore.push_back(&configuration);
      continue;
    }
    comparison.configurations.push_back(
        compared(configuration, *left, *pair->second, *right));
    paired.insert(pair->second);
  }
  for (const OverviewConfiguration &configuration : after.configurations)
    if (!paired.count(&configuration))
      comparison.onlyAfter.push_back(&configuration);
  return comparison;
}

const char *corvane::changeText(Change change) {
  switch (change) {
  case Change::Faster:
    return "faster";
  case Change::Slower:
    return "slower";
  case Change::NoDifference:
    return "no difference";
  case Change::TooFew:
    return "too few samples";
  }
  return "";
}
