// The kernel and the sizes of a launch as text, by which all result files tell
// launches apart.

#pragma once

#include "results/LaunchSizes.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

/// The kernel of a launch and its sizes, as texts: empty for the dimensions
/// that the launch does not have, and for local sizes "0" where it gave none.
/// What was read from a file is kept as it was, so "64" and "064" differ.
struct LaunchKey {
  std::string kernel;
  std::string xGlobal;
  std::string yGlobal;
  std::string zGlobal;
  std::string xLocal;
  std::string yLocal;
  std::string zLocal;

  static constexpr std::size_t fieldCount = 7;
  /// The members in the order that every file has them in. They belong to this
  /// key.
  std::array<std::string *, fieldCount> fields() {
    return {&kernel, &xGlobal, &yGlobal, &zGlobal, &xLocal, &yLocal, &zLocal};
  }
  std::array<const std::string *, fieldCount> fields() const {
    return {&kernel, &xGlobal, &yGlobal, &zGlobal, &xLocal, &yLocal, &zLocal};
  }

  bool operator==(const LaunchKey &other) const;
  bool operator!=(const LaunchKey &other) const { return !(*this == other); }
};

/// The key of a launch. Of its dimensions three at most count; it may have
/// none.
LaunchKey makeLaunchKey(const std::string &kernel, const LaunchSizes &sizes);

/// The fields with \p separator between them: "k,1024,,,64,,".
std::string joinedFields(const LaunchKey &key, char separator);

/// The fields of a text that joinedFields made with commas. What a shorter text
/// lacks is empty; the last field takes what a longer one has left.
LaunchKey splitFields(std::string_view text);

} // namespace corvane
