// The sizes of a launch, as numbers that compare.

#pragma once

#include "llvm/Support/JSON.h"

#include <array>
#include <cstdint>
#include <string>

namespace corvane {

class JsonFields;

/// The ND range that an application asked for. What lies past the dimensions is
/// 0 in both arrays.
struct LaunchSizes {
  std::uint32_t dimensions = 1;          ///< 1 to 3
  std::array<std::uint64_t, 3> global{}; ///< in work-items
  std::array<std::uint64_t, 3> local{};  ///< all 0: left to the runtime

  bool hasLocal() const { return local[0] != 0; }
};

bool operator==(const LaunchSizes &left, const LaunchSizes &right);
bool operator<(const LaunchSizes &left, const LaunchSizes &right);

/// "512x512 / 16x4"; without the second half when the runtime chose.
std::string sizesText(const LaunchSizes &sizes);

/// Writes the fields "global", a list with one number a dimension, and "local",
/// such a list or null.
void writeSizes(llvm::json::OStream &out, const LaunchSizes &sizes);

/// Reads the two fields; complains there if they are no sizes.
LaunchSizes readSizes(JsonFields &fields);

} // namespace corvane
