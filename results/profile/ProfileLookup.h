// Answers which version a launch uses by a profile.

#pragma once

#include "results/profile/Profile.h"

#include "llvm/ADT/StringRef.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What a profile says about one launch.
struct ProfileAnswer {
  enum Kind {
    Unknown,  ///< nothing: the original runs
    Original, ///< the original is the one to use
    Variant,  ///< the variant with this spec, where its conditions accept
  };
  Kind kind = Unknown;
  /// Whether exactly these sizes were measured. Otherwise the answer is the one
  /// that is the same for all sizes that were.
  bool measured = false;
  llvm::StringRef spec; ///< of the variant; lasts as long as the lookup
};

/// The decisions for one kernel of one program on one device.
class KernelChoices {
public:
  /// The first decision for the same sizes counts.
  void add(const LaunchSizes &sizes, const std::optional<std::string> &use);

  /// Any thread, once nothing is added any more.
  ProfileAnswer answer(const LaunchSizes &sizes) const;

private:
  std::map<LaunchSizes, std::string> bySizes; ///< empty: the original
  bool unanimous = true; ///< whether all sizes have the same version
};

/// A profile made ready for launches. Built once and not changed; any thread
/// may ask. Holds a copy of what it needs from the profile.
///
/// A launch asks in two steps: choicesFor when program, kernel and device are
/// known, which takes the time of their texts, and answer for the sizes.
class ProfileLookup {
public:
  explicit ProfileLookup(const Profile &profile);
  // Answers refer to it.
  ProfileLookup(const ProfileLookup &) = delete;
  ProfileLookup &operator=(const ProfileLookup &) = delete;

  enum class DeviceMatch {
    Known,
    OtherDriver, ///< the profile has the device with another driver only
    Unknown,
  };
  DeviceMatch match(const ProfileDevice &device) const;

  /// Null when the profile has nothing for this kernel, which is an answer of
  /// Unknown for all sizes. Lasts as long as the lookup.
  const KernelChoices *choicesFor(llvm::StringRef programHash,
                                  llvm::StringRef kernel,
                                  const ProfileDevice &device) const;

private:
  std::vector<ProfileDevice> devices;
  /// By device, program and kernel. Not LLVM's map, which ends the process
  /// where memory is refused.
  std::map<std::string, KernelChoices> choices;
};

} // namespace corvane
