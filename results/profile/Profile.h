// What tuning has decided, for launches to come. Data only.
//
// A profile is a file with devices, programs, and for each kernel and sizes
// that were measured the version to use.

#pragma once

#include "results/runs/RunLines.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace corvane {

/// The version of the format that is written, and the highest that is read.
inline constexpr std::uint32_t profileFormatVersion = 1;

/// A device as profiles tell it from others. Another driver is another device:
/// what was measured and proved with one does not hold for the next.
struct ProfileDevice {
  std::string name;   ///< CL_DEVICE_NAME
  std::string vendor; ///< CL_DEVICE_VENDOR
  std::string driver; ///< CL_DRIVER_VERSION
};

inline auto inOrder(const ProfileDevice &device) {
  return std::tie(device.name, device.vendor, device.driver);
}
inline bool operator==(const ProfileDevice &left, const ProfileDevice &right) {
  return inOrder(left) == inOrder(right);
}
inline bool operator<(const ProfileDevice &left, const ProfileDevice &right) {
  return inOrder(left) < inOrder(right);
}

/// How the comparisons of a version with the original went, all together.
enum class Agreement {
  Unknown,     ///< nothing was compared
  Equal,       ///< always to the last bit
  WithinBound, ///< never worse than CORVANE_VERIFY allowed
  Different,   ///< at least once; the version is out for its program
};

/// One version in one entry. The original has the empty name here and is
/// "baseline" in the file.
struct ProfileVersion {
  double median = 0.0;       ///< in microseconds
  std::uint64_t samples = 0; ///< that count
  Agreement check = Agreement::Unknown;
};

/// What to use for one kernel and sizes, and what speaks for it.
struct ProfileEntry {
  std::string kernel;
  LaunchSizes sizes;
  std::size_t device = 0;  ///< index in the profile's devices
  std::size_t program = 0; ///< index in the profile's programs
  /// The spec text of the variant to use; none: the original.
  std::optional<std::string> use;
  std::map<std::string, ProfileVersion> versions;
  /// Of the time of the version with the least median to the original's; none
  /// when no version could be compared.
  std::optional<RatioInterval> interval;
};

struct Profile {
  std::vector<ProfileDevice> devices;
  std::vector<std::string> programs; ///< hashes, in hexadecimal digits
  std::vector<ProfileEntry> entries;
};

} // namespace corvane
