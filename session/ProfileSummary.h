// Counts what a profile has done for a process.

#pragma once

#include <atomic>
#include <cstdint>

namespace corvane {

/// A configuration is a kernel that has variants, of one program, with sizes on
/// a device. Any thread.
struct ProfileSummary {
  std::atomic<std::uint64_t> configurations{0};
  std::atomic<std::uint64_t> withVariant{0}; ///< of these, ran a variant
  std::atomic<std::uint64_t> unknown{0};     ///< the profile says nothing
  std::atomic<std::uint64_t> launches{0};    ///< of all configurations
  std::atomic<std::uint64_t> byVariant{0};   ///< of these

  /// Writes one line to the error stream.
  void tell() const;
};

} // namespace corvane
