// The sizes of a launch as numbers, wherever the project has them.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

/// One number a dimension; those that the launch does not have are 0.
using Sizes = std::array<std::size_t, 3>;

/// The ND range that an application asked for.
struct LaunchSizes {
  std::uint32_t dimensions = 1; ///< 1 to 3, unless the launch is irregular
  Sizes global{};               ///< in work-items; 0: not given
  Sizes local{};                ///< all 0: left to the runtime

  bool hasLocal() const { return local[0] != 0; }
};

bool operator==(const LaunchSizes &left, const LaunchSizes &right);
bool operator<(const LaunchSizes &left, const LaunchSizes &right);

/// "512x512 / 16x4"; without the second half when the runtime chose.
std::string sizesText(const LaunchSizes &sizes);

} // namespace corvane
