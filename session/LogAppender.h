// Writes the rows of completed runs to the raw timing log.

#pragma once

#include "session/LaunchHistory.h"

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// Makes a log that holds only the header line, whatever was there before.
/// Returns whether it could be opened; a header that cannot be written comes
/// with the first row that can. Any thread, also while runs of an earlier load
/// complete.
bool createRawLog(const std::string &directory);

/// Remembers the duration of a run of \p record and adds its row to the log.
/// Does nothing once the history is closed. An empty \p version is the
/// application's kernel. Takes the history's lock. Any thread.
void recordTiming(LaunchHistory &history, LaunchRecord &record,
                  std::string version, std::uint64_t nanoseconds);

/// Where the results of \p history go: to the folder of the run, if this
/// process tunes, or else where CORVANE_AUTOTUNE says; none if neither is
/// known. Hold the history's lock.
std::optional<std::string> resultsFolder(const LaunchHistory &history);

/// Adds a row for the last timing of \p record to the log, or makes a missing
/// or empty log anew from the whole history. Does nothing without autotuning
/// and tuning, or once the history is closed. A row that cannot be written
/// waits.
///
/// Hold the history's lock.
void appendTiming(LaunchHistory &history, const LaunchRecord &record);

/// Writes the rows that wait, or makes a missing or empty log anew from the
/// whole history. Does nothing if no row waits or another thread is writing to
/// a log: waits for no lock. Failures leave no trace.
///
/// Hold the history's lock.
void writeWaitingRows(LaunchHistory &history, const std::string &directory);

} // namespace corvane
