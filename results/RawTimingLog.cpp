// Writes whole lines only, each in one go: a process that is killed at any
// moment leaves a log that can be read.

#include "results/RawTimingLog.h"

#include "agent/Environment.h"
#include "agent/Flags.h"
#include "agent/platform/Platform.h"
#include "results/ConfigResults.h"
#include "results/File.h"
#include "results/NumberText.h"

#include <algorithm>

using namespace corvane;

// The column names are part of the interface, byte for byte.
static constexpr const char *headerLine =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time\n";

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

std::string corvane::launchKey(const LaunchRecord &record) {
  std::string key = record.kernel;
  addSizes(key, record.globalSize, record.workDim);
  addSizes(key, record.localSize, record.workDim);
  return key;
}

std::string corvane::timeText(std::uint64_t nanoseconds) {
  return fixedText(static_cast<double>(nanoseconds) / 1000.0, 3);
}

static std::string rowLine(const std::string &key, const TimingEntry &entry) {
  std::string line = key;
  line += ',';
  line += entry.version.empty() ? baselineName : entry.version;
  line += ',';
  line += timeText(entry.nanoseconds);
  line += '\n';
  return line;
}

// A full disk may take the first part of a line; the log must not keep it.
static bool writeLine(std::FILE *log, const std::string &line) {
  const long before = std::ftell(log);
  if (std::fwrite(line.data(), 1, line.size(), log) == line.size())
    return true;
  if (before >= 0)
    platform::cutFile(log, before);
  return false;
}

bool corvane::createRawLog(const std::string &directory) {
  const FileHandle log = openFile(rawLogPath(directory), "wb");
  if (!log)
    return false;
  writeLine(log.get(), headerLine);
  return true;
}

static bool hasContent(const std::string &path) {
  const FileHandle log = openFile(path, "rb");
  return log && std::fgetc(log.get()) != EOF;
}

static void appendLine(const std::string &path, const std::string &line) {
  const FileHandle log = openFile(path, "ab");
  if (log && std::fseek(log.get(), 0, SEEK_END) == 0)
    writeLine(log.get(), line);
}

static bool writeRows(std::FILE *log, const LaunchRecord &record) {
  const std::string key = launchKey(record);
  return std::all_of(record.timings.begin(), record.timings.end(),
                     [&](const TimingEntry &entry) {
                       return writeLine(log, rowLine(key, entry));
                     });
}

static void rewriteLog(const std::string &path, const LaunchHistory &history) {
  const FileHandle log = openFile(path, "wb");
  if (!log || !writeLine(log.get(), headerLine))
    return;
  for (const std::shared_ptr<LaunchRecord> &record : history.records)
    if (!writeRows(log.get(), *record))
      return;
}

void corvane::appendTiming(LaunchHistory &history, const LaunchRecord &record) {
  const char *directory = autotuneDir();
  if (!autotuneOutput() || !history.open || !directory ||
      record.timings.empty())
    return;
  const std::string path = rawLogPath(directory);
  if (hasContent(path))
    appendLine(path, rowLine(launchKey(record), record.timings.back()));
  else
    rewriteLog(path, history);
}
