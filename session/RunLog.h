// Writes the run record of this process, line by line.

#pragma once

#include "results/runs/RunLines.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

namespace corvane {

/// The file "run.jsonl" of one run. Each line is written at once and with one
/// write, so that a process that is killed leaves whole lines. What a full disk
/// does not take is tried again with the next line, and dropped where it is too
/// much; nothing is ever told of that. Any thread.
///
/// The lock is a leaf lock: the runtime is never called while it is held.
class RunLog {
public:
  /// For the folder \p runFolder, which exists. Writes \p first.
  RunLog(std::string runFolder, const ProcessLine &first);

  /// Where the other results of the run go.
  const std::string &folder() const { return path; }

  /// Gives the line its number, writes it and returns the number. Lines that
  /// refer to a number come after the call that returned it.
  std::uint32_t add(DeviceLine line);
  std::uint32_t add(ProgramLine line);
  std::uint32_t add(ConfigurationLine line);

  void add(const SampleLine &line) { write(line); }
  void add(const CheckLine &line) { write(line); }
  void add(const DecisionLine &line) { write(line); }

  /// Writes the last line; others that come later are dropped. Also while the
  /// process ends: a thread that holds the lock is not waited for, because it
  /// may be gone, and then the record has no end.
  void close(const EndLine &line);

private:
  void write(const RunLine &line);
  void append(const std::string &text);

  const std::string path;
  std::mutex lock;
  std::string unwritten; ///< whole lines
  std::uint32_t devices = 0;
  std::uint32_t programs = 0;
  std::uint32_t configurations = 0;
  std::atomic<bool> open{true};
};

} // namespace corvane
