// The launches of this process that are autotuned or tuned, and how long their
// runs took.

#pragma once

#include "results/LaunchKey.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
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

/// One launch by the application. Small, because every launch leaves one: what
/// repeats belongs to the history.
struct LaunchRecord {
  const std::string *fields = nullptr; ///< its launch key, joined with commas
  std::vector<TimingEntry> timings;    ///< guarded by the history's lock
};

/// All launches since the load, in the order of launching.
///
/// Runs complete on threads of the runtime, without the agent lock and perhaps
/// after a flush; so each run under way shares the history.
struct LaunchHistory {
  LaunchHistory() = default;
  explicit LaunchHistory(std::string folder) : loadFolder(std::move(folder)) {}

  /// The folder that was current at the load, from which a relative output
  /// directory is found; empty if it is unknown.
  const std::string loadFolder;

  /// Guards all that follows but open, and the log file. A leaf lock: never
  /// held across a call into the runtime.
  std::mutex lock;
  std::vector<std::shared_ptr<LaunchRecord>> records;
  /// The folder of the run that tunes; none before its first launch.
  std::optional<std::string> runFolder;
  /// Rows that could not be written to the log yet, each with its line feed.
  std::string unwrittenRows;
  std::unordered_set<std::string> texts;

  /// False once the results are being written: runs that complete later are
  /// not recorded.
  std::atomic<bool> open{true};

  /// The one copy of \p text that all records share; lasts as long as the
  /// history. Hold the lock.
  const std::string &shared(std::string text) {
    return *texts.insert(std::move(text)).first;
  }

  /// A record that is not listed yet. Takes the lock.
  std::shared_ptr<LaunchRecord> makeRecord(const LaunchKey &key) {
    auto record = std::make_shared<LaunchRecord>();
    const std::lock_guard<std::mutex> guard(lock);
    record->fields = &shared(joinedFields(key, ','));
    return record;
  }
};

} // namespace corvane
