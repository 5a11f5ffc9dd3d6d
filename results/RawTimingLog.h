// The raw timing log: a line of text for each run, as soon as it completes.

#pragma once

#include "agent/LaunchRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

/// Where the log of an output directory is; the directory's text is used as it
/// stands.
std::string rawLogPath(const std::string &directory);

/// The first seven fields of a row: the kernel and its sizes, empty for the
/// dimensions that the launch does not have.
std::string launchKey(const std::string &kernel, std::uint32_t workDim,
                      const std::array<std::size_t, 3> &globalSize,
                      const std::array<std::size_t, 3> &localSize);

/// A duration in microseconds, three digits behind the point.
std::string timeText(std::uint64_t nanoseconds);

/// Makes a log that holds only the header line, whatever was there before.
/// Returns whether it could be opened; whether it could be written is nobody's
/// concern. Any thread, also while runs of an earlier load complete.
bool createRawLog(const std::string &directory);

/// Writes the rows that could not be written yet, or makes a missing or empty
/// log anew from the whole history. Does nothing if no row waits or another
/// thread is writing to a log: waits for no lock. Failures leave no trace.
///
/// Hold the history's lock.
void writeWaitingRows(LaunchHistory &history, const std::string &directory);

/// Adds a row for the last timing of \p record to the log, or makes a missing
/// or empty log anew from the whole history. Does nothing without autotuning or
/// once the history is closed; failures leave no trace.
///
/// Hold the history's lock.
void appendTiming(LaunchHistory &history, const LaunchRecord &record);

} // namespace corvane
