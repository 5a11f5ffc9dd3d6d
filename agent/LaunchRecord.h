// What one autotuning launch was, and how long each version of it took.

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace corvane {

/// The duration of one completed run.
struct TimingEntry {
  /// Spec text; empty: the application's kernel. Belongs to the history.
  const std::string *version = nullptr;
  std::uint64_t nanoseconds = 0; ///< device time
};

/// One launch by the application in autotuning mode. Small, because every
/// launch leaves one: what repeats belongs to the history.
struct LaunchRecord {
  const std::string *key = nullptr; ///< how the rows of the launch begin
  std::vector<TimingEntry> timings; ///< guarded by the history's lock
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
  /// Guards the records' timings, the list, the texts, the rows and the log
  /// file. A leaf lock: never held across a call into the runtime.
  std::mutex lock;
  std::vector<std::shared_ptr<LaunchRecord>> records;

  /// The one copy of \p text that all records share; lasts as long as the
  /// history. Hold the lock.
  const std::string &shared(std::string text) {
    return *texts.insert(std::move(text)).first;
  }
  std::unordered_set<std::string> texts;

  /// Rows that could not be written to the log yet, each with its line feed.
  std::string unwrittenRows;
  /// False once the results are being written: later runs leave no trace.
  std::atomic<bool> open{true};
};

} // namespace corvane
