// Writes whole lines only, each in one go: a process that is killed at any
// moment leaves a log that can be read.

#include "results/RawTimingLog.h"

#include "agent/Flags.h"
#include "base/Platform.h"
#include "results/ConfigResults.h"
#include "results/File.h"
#include "results/NumberText.h"
#include "results/OutputDirectory.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

using namespace corvane;
using platform::FileHandle;
using platform::FileUse;

// The column names are part of the interface, byte for byte.
static constexpr const char *headerLine =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time\n";

// A leaf lock below the histories': a second load empties the log for which the
// first one's runs have a lock of their own.
static std::mutex fileLock;

std::string corvane::rawLogPath(const std::string &directory) {
  return directory + "/.auto.csv";
}

static void addSizes(std::string &key, const std::array<std::size_t, 3> &sizes,
                     std::size_t count) {
  for (std::size_t d = 0; d != sizes.size(); ++d) {
    key += ',';
    if (d < count)
      key += std::to_string(sizes[d]);
  }
}

std::string corvane::launchKey(const std::string &kernel, std::uint32_t workDim,
                               const std::array<std::size_t, 3> &globalSize,
                               const std::array<std::size_t, 3> &localSize) {
  std::string key = kernel;
  addSizes(key, globalSize, workDim);
  addSizes(key, localSize, workDim);
  return key;
}

// Up to this many nanoseconds the double that stands for them, with three
// decimals, has just their digits.
static constexpr std::uint64_t mostExactNanoseconds = 1'000'000'000'000'000;

std::string corvane::timeText(std::uint64_t nanoseconds) {
  if (nanoseconds < mostExactNanoseconds) {
    std::string text = std::to_string(nanoseconds);
    text.insert(0, 4 - std::min<std::size_t>(text.size(), 4), '0');
    return text.insert(text.size() - 3, 1, '.');
  }
  return fixedText(static_cast<double>(nanoseconds) / 1000.0, 3);
}

static std::string rowLine(const LaunchRecord &record,
                           const TimingEntry &entry) {
  std::string line = *record.key;
  line += ',';
  line += entry.version->empty() ? baselineName : *entry.version;
  line += ',';
  line += timeText(entry.nanoseconds);
  line += '\n';
  return line;
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
  const FileHandle log = openFile(rawLogPath(directory), FileUse::Replace);
  if (!log)
    return false;
  writeLine(log.get(), headerLine, 0);
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

// Writes as many whole lines as the disk takes behind the \p length bytes that
// are there; the others stay in rows.
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
      rows += rowLine(*record, entry);
  return rows;
}

// \p log is empty.
static void writeAnew(std::FILE *log, LaunchHistory &history) {
  // A full disk takes not even the header; a long history is not made into rows
  // for each try.
  if (!writeLine(log, headerLine, 0))
    return;
  try {
    history.unwrittenRows = allRows(history);
  } catch (const std::bad_alloc &) {
    platform::cutFile(log, 0); // the next row tries again
    throw;
  }
  writeRows(log, history.unwrittenRows,
            static_cast<long>(std::strlen(headerLine)));
}

// Each time anew, for anybody may have moved, emptied or deleted the log. One
// handle is enough to look at it and to add to it: opened like this a missing
// log is an empty one. A log that can be written but not read is made anew.
static void updateLog(const std::string &path, LaunchHistory &history) {
  FileHandle log = openFile(path, FileUse::Append);
  if (!log)
    log = openFile(path, FileUse::Replace);
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

void corvane::appendTiming(LaunchHistory &history, const LaunchRecord &record) {
  const std::lock_guard<std::mutex> guard(fileLock);
  if (!autotuneOutput() || !history.open || record.timings.empty())
    return;
  history.unwrittenRows += rowLine(record, record.timings.back());
  if (const std::optional<std::string> directory =
          outputDirectory(history.loadFolder))
    updateLog(rawLogPath(*directory), history);
}

void corvane::writeWaitingRows(LaunchHistory &history,
                               const std::string &directory) {
  const std::unique_lock<std::mutex> guard(fileLock, std::try_to_lock);
  if (guard && !history.unwrittenRows.empty())
    updateLog(rawLogPath(directory), history);
}
