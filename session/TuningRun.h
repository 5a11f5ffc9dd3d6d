// What this process tells of its tuning: the record of its run, and the counts
// of its launches.

#pragma once

#include "session/RunLog.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace corvane {

struct LaunchHistory;

/// One process's run while it tunes. Its folder is made at the first launch: a
/// process that launches nothing leaves nothing. Any thread.
///
/// The lock is a leaf lock but for the history's: the runtime is never called
/// while it is held.
class TuningRun {
public:
  /// Below \p tunedFolder, which is absolute. The raw timing log of \p launches
  /// goes to the run's folder as well.
  TuningRun(std::string tunedFolder, std::shared_ptr<LaunchHistory> launches);

  /// Counts a launch of the application's; the first one starts the run. False
  /// if no folder can be made, which the error stream says once: then nothing
  /// is to be tuned.
  bool countLaunch();

  /// Adds a line to the record. Those with a number get it here; it is
  /// returned.
  std::uint32_t add(DeviceLine line) { return log->add(std::move(line)); }
  std::uint32_t add(ProgramLine line) { return log->add(std::move(line)); }
  std::uint32_t add(ConfigurationLine line) {
    return log->add(std::move(line));
  }
  void add(const SampleLine &line) { log->add(line); }
  void add(const CheckLine &line) { log->add(line); }
  void add(const DecisionLine &line) { log->add(line); }

  /// Counts the version that ran for the application in a configuration; the
  /// empty text is the original.
  void countVersion(std::uint32_t configuration, const std::string &version);

  /// Counts the time by which a job held up the application's run, and the
  /// launch if samples were taken.
  void countTuning(double seconds, bool hasSamples);

  /// Writes the last line. Waits for no lock that another thread may hold for
  /// long: the record then has no end.
  void close();

private:
  bool start();
  EndLine endLine() const;

  const std::string folder;
  const std::shared_ptr<LaunchHistory> history;

  std::mutex lock;
  std::unique_ptr<RunLog> log; ///< null before the first launch, or for good
  bool isRefused = false;
  std::uint64_t launches = 0;
  std::uint64_t tunedLaunches = 0;
  double secondsAdded = 0.0;
  std::map<std::pair<std::uint32_t, std::string>, std::uint64_t> byVersion;
};

} // namespace corvane
