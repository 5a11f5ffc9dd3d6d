// Opens the record for each line anew, so that no number of an open file stays
// with a host that closes or copies such numbers.

#include "session/RunLog.h"

#include "agent/ErrorStream.h"
#include "base/Platform.h"
#include "results/ResultFiles.h"
#include "results/runs/RunWriter.h"

#include <cstdio>
#include <utility>

using namespace corvane;
using platform::FileUse;

// More than a full disk keeps waiting in an ordinary run.
static constexpr std::size_t mostUnwritten = std::size_t{1} << 20;

RunLog::RunLog(std::string runFolder, const ProcessLine &first)
    : path(std::move(runFolder)) {
  write(first);
}

std::uint32_t RunLog::add(DeviceLine line) {
  const std::lock_guard<std::mutex> guard(lock);
  line.device = devices++;
  append(lineText(line));
  return line.device;
}

std::uint32_t RunLog::add(ProgramLine line) {
  const std::lock_guard<std::mutex> guard(lock);
  line.program = programs++;
  append(lineText(line));
  return line.program;
}

std::uint32_t RunLog::add(ConfigurationLine line) {
  const std::lock_guard<std::mutex> guard(lock);
  line.configuration = configurations++;
  append(lineText(line));
  return line.configuration;
}

void RunLog::write(const RunLine &line) {
  const std::string text = lineText(line);
  const std::lock_guard<std::mutex> guard(lock);
  append(text);
}

void RunLog::close(const EndLine &line) {
  const std::string text = lineText(line);
  const std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
  if (guard)
    append(text);
  open = false;
}

// The file must not keep the first part of a line.
void RunLog::append(const std::string &text) {
  if (!open)
    return;
  if (unwritten.size() + text.size() <= mostUnwritten)
    unwritten += text;
  const std::string name = resultPath(path, resultFile::runRecord);
  const platform::OpenedFile record =
      platform::openRegularFile(name, FileUse::Append);
  if (record.refused)
    reportRefusedFile(name);
  if (!record.file)
    return;
  std::FILE *const file = record.file.get();
  while (!unwritten.empty()) {
    const std::size_t length = unwritten.find('\n') + 1;
    const long before =
        std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
    if (platform::writeBytes(file, unwritten.data(), length) != length) {
      if (before >= 0)
        platform::cutFile(file, before);
      return;
    }
    unwritten.erase(0, length);
  }
}
