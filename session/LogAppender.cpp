// Appends whole lines, each with one write: a process that is killed at any
// moment leaves a log that can be read.

#include "session/LogAppender.h"

#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/Flags.h"
#include "base/Platform.h"
#include "results/RawTimingLog.h"
#include "results/ResultFiles.h"

#include <limits>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

using namespace corvane;
using platform::FileHandle;
using platform::FileUse;

// A leaf lock, taken with a history's lock held. That one is not enough: after
// a second load the runs of the first one have another history.
static std::mutex fileLock;

static FileHandle openLog(const std::string &directory, FileUse use) {
  const std::string path = resultPath(directory, resultFile::rawLog);
  platform::OpenedFile log = platform::openRegularFile(path, use);
  if (log.refused)
    reportRefusedFile(path);
  return std::move(log.file);
}

static std::string rowOf(const LaunchRecord &record, const TimingEntry &entry) {
  return rawLogRow(*record.fields, *entry.version, entry.nanoseconds);
}

// A full disk may take the first part of a line; the log, which was \p before
// bytes long if that is known, must not keep it.
static bool writeLine(std::FILE *log, std::string_view line, long before) {
  if (platform::writeBytes(log, line.data(), line.size()) == line.size())
    return true;
  if (before >= 0)
    platform::cutFile(log, before);
  return false;
}

bool corvane::createRawLog(const std::string &directory) {
  const std::lock_guard<std::mutex> guard(fileLock);
  const FileHandle log = openLog(directory, FileUse::Replace);
  if (!log)
    return false;
  writeLine(log.get(), rawLogHeader, 0);
  return true;
}

// The length of a log that was \p length long, and got so many bytes since;
// negative if it is not known or does not fit.
static long lengthAfter(long length, std::size_t bytes) {
  const auto most =
      static_cast<unsigned long>(std::numeric_limits<long>::max());
  if (length < 0 || bytes > most - static_cast<unsigned long>(length))
    return -1;
  return length + static_cast<long>(bytes);
}

// Appends as many whole lines as the disk takes to the log, which is \p length
// bytes long; the others stay in rows.
static void writeRows(std::FILE *log, std::string &rows, long length) {
  std::size_t written = 0;
  while (written < rows.size()) {
    const std::size_t next = rows.find('\n', written) + 1;
    if (!writeLine(log, {rows.data() + written, next - written},
                   lengthAfter(length, written)))
      break;
    written = next;
  }
  rows.erase(0, written);
}

static std::string allRows(const LaunchHistory &history) {
  std::string rows;
  for (const std::shared_ptr<LaunchRecord> &record : history.records)
    for (const TimingEntry &entry : record->timings)
      rows += rowOf(*record, entry);
  return rows;
}

// Writes the header and all rows of the history to an empty log.
static void writeAnew(std::FILE *log, LaunchHistory &history) {
  // First of all, so that a full disk does not have a long history made into
  // rows for each try.
  if (!writeLine(log, rawLogHeader, 0))
    return;
  try {
    history.unwrittenRows = allRows(history);
  } catch (const std::bad_alloc &) {
    platform::cutFile(log, 0); // the next row tries again
    throw;
  }
  writeRows(log, history.unwrittenRows, static_cast<long>(rawLogHeader.size()));
}

// Opens the log each time anew, because any process may have moved, emptied or
// deleted it. One handle serves for its length and for the rows: opened like
// this a missing log is an empty one. A log that can be written but not read is
// made anew.
static void updateLog(const std::string &directory, LaunchHistory &history) {
  FileHandle log = openLog(directory, FileUse::Append);
  if (!log)
    log = openLog(directory, FileUse::Replace);
  if (!log)
    return;
  // Negative where it does not fit: such a log is not empty.
  const long length =
      std::fseek(log.get(), 0, SEEK_END) == 0 ? std::ftell(log.get()) : -1;
  if (length == 0)
    writeAnew(log.get(), history);
  else
    writeRows(log.get(), history.unwrittenRows, length);
}

std::optional<std::string>
corvane::resultsFolder(const LaunchHistory &history) {
  return history.runFolder ? history.runFolder
                           : outputDirectory(history.loadFolder);
}

void corvane::recordTiming(LaunchHistory &history, LaunchRecord &record,
                           std::string version, std::uint64_t nanoseconds) {
  const std::lock_guard<std::mutex> lock(history.lock);
  if (!history.open)
    return;
  record.timings.push_back({&history.shared(std::move(version)), nanoseconds});
  appendTiming(history, record);
}

void corvane::appendTiming(LaunchHistory &history, const LaunchRecord &record) {
  const std::lock_guard<std::mutex> guard(fileLock);
  const bool hasLog = autotuneOutput() || history.runFolder;
  if (!hasLog || !history.open || record.timings.empty())
    return;
  history.unwrittenRows += rowOf(record, record.timings.back());
  if (const std::optional<std::string> directory = resultsFolder(history))
    updateLog(*directory, history);
}

void corvane::writeWaitingRows(LaunchHistory &history,
                               const std::string &directory) {
  const std::unique_lock<std::mutex> guard(fileLock, std::try_to_lock);
  if (guard && !history.unwrittenRows.empty())
    updateLog(directory, history);
}
