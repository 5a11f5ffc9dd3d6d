// Collects what the library writes to standard error for one input.

#pragma once

#include <string>

namespace corvane::fuzz {

/// The descriptor to which failures are written, if it is not the one that
/// ErrorText finds; for fuzzers, which redirect standard error themselves.
extern int streamForFailures;

/// Makes file descriptor 2 a file, until the process ends. One a process.
/// fail() still writes to what standard error was.
class ErrorText {
public:
  explicit ErrorText(const std::string &path);

  /// All that was written since the last time.
  std::string take();

private:
  std::string path;
};

} // namespace corvane::fuzz
