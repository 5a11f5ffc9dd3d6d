// What one autotuning launch was, and how long each version of it took.

#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

/// The duration of one completed run.
struct TimingEntry {
  std::string version;           ///< spec text; empty: the application's kernel
  std::uint64_t nanoseconds = 0; ///< device time
};

/// One launch by the application in autotuning mode. Everything but the timings
/// is fixed once the record is listed; the history's lock guards the timings.
struct LaunchRecord {
  std::string kernel; ///< the application's kernel
  std::uint32_t workDim = 0;
  std::array<std::size_t, 3> globalSize{}; ///< 0 from workDim on
  std::array<std::size_t, 3> localSize{};  ///< 0 also without local sizes
  std::vector<TimingEntry> timings;
};

/// All launches since the load, in the order of launching.
///
/// Runs complete on threads of the runtime, without the agent lock and perhaps
/// after a flush; so whoever waits for a run shares the history.
struct LaunchHistory {
  LaunchHistory() = default;
  explicit LaunchHistory(std::string folder) : loadFolder(std::move(folder)) {}

  /// The folder that was current at the load, from which a relative output
  /// directory is found; empty if it is unknown.
  const std::string loadFolder;
  /// Guards the records' timings, the list, the rows and the log file. A leaf
  /// lock: never held across a call into the runtime.
  std::mutex lock;
  std::vector<std::shared_ptr<LaunchRecord>> records;
  /// Rows that could not be written to the log yet, each with its line feed.
  std::string unwrittenRows;
  /// False once the results are being written: later runs leave no trace.
  std::atomic<bool> open{true};
};

} // namespace corvane
