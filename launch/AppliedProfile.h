// The profile that this process applies.

#pragma once

#include "launch/VariantChoice.h"
#include "results/profile/ProfileLookup.h"
#include "session/ProfileSummary.h"

#include <CL/cl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace corvane {

struct AgentState;

/// Answers which variant a launch uses, from a profile that was read at the
/// load. Hold the agent lock.
class AppliedProfile {
public:
  /// \p file is for messages. \p counts, which may be null, gets what becomes
  /// of the launches.
  AppliedProfile(const Profile &profile, std::string file,
                 std::shared_ptr<ProfileSummary> counts);

  /// The variant that the profile names for \p launch, with its range. No
  /// variant, and so the application's kernel, if the profile names none, if
  /// the program lacks it or if one of its conditions refuses: no other variant
  /// than the profile's ever runs. Program, device and driver must be those
  /// that were measured.
  VariantChoice choose(AgentState &state, KernelRecord &record,
                       const Launch &launch);

  /// The same as the profile says it, for sizes that it may or may not have.
  ProfileAnswer answer(AgentState &state, const KernelRecord &record,
                       cl_device_id device, const LaunchSizes &sizes);

  /// Counts a launch of the kernel that \c choose was asked for last.
  void countLaunch(KernelRecord &record, bool byVariant);

private:
  using Configuration =
      std::tuple<std::string, std::string, cl_device_id, LaunchSizes>;

  const std::optional<ProfileDevice> &identify(cl_device_id device);
  ProfiledLaunch lookUp(AgentState &state, KernelRecord &record,
                        cl_device_id device, const LaunchSizes &sizes);
  bool *noteConfiguration(Configuration configuration, bool isKnown);

  const ProfileLookup lookup;
  const std::string file;
  const std::shared_ptr<ProfileSummary> summary;
  bool toldOtherDriver = false;
  /// None for a device that the runtime does not describe.
  std::map<cl_device_id, std::optional<ProfileDevice>> devices;
  /// Whether a variant ran; only where there is a summary.
  std::map<Configuration, bool> configurations;
};

/// Reads the profile that CORVANE_PROFILE names; null without one. One that
/// cannot be read is told on the error stream and answers as an empty one. A
/// relative path is looked for from \p loadFolder. \p counts is as above. Hold
/// an EnvironmentLook.
std::unique_ptr<AppliedProfile>
readAppliedProfile(const std::string &loadFolder,
                   std::shared_ptr<ProfileSummary> counts);

} // namespace corvane
